// Burp and Quantum singularity: a cross-fade warped about a centre that stands still or travels. The
// singularity draws the picture into the point and lets it go; the burp bulges, falls back, and hiccups once.
//
// In coordinates about the centre over its distance from the farther edges, a pixel at d < 1 shows what lies
// at d^e along its ray: e = 1 / (1 + a w) for the singularity, 1 + a w for the burp, w = (1 - d^2)^2, a the
// frame's pull.
#include <numbers>

#include "numbers/portable_math.h"
#include "numbers/quick_functions.h"
#include "transitions/run.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

enum class ImplodeKind { Burp, QuantumSingularity };

/// One frame's warp: where it has its centre, and how far it reaches, in pixels.
struct WarpShape {
    double pull;
    double centreX, centreY, reachX, reachY;
};

/// sampled distance / distance, from the square of the distance. What lies outside stays as it is.
template <ImplodeKind kKind>
LUMAFOLD_IN_CALLER double Stretch(double square, double pull) {
    const double rest = 1 - square;
    const double aw = pull * (rest * rest);
    const double exponent = kKind == ImplodeKind::Burp ? 0.5 * aw : -0.5 * aw / (1 + aw);
    return QuickExp(std::max(exponent * QuickLog(square), -700.0));
}

template <ImplodeKind kKind>
struct Warp {
    const WarpShape& shape;
    double* stretches; ///< of the row at hand

    /// From both edges inwards: a centre in the middle has two rows at each distance.
    LUMAFOLD_IN_CALLER void Render(const WarpSampler& sampler, const RowView& rows) const {
        const std::int32_t height = rows.Height();
        double known = -1;
        for (std::int32_t i = 0; i < height; ++i) {
            const std::int32_t y = i % 2 == 0 ? i / 2 : height - 1 - i / 2;
            const double down = (y + 0.5 - shape.centreY) / shape.reachY;
            if (down * down != known) FillStretches(known = down * down, rows.Width());
            RenderRow(sampler, y, rows);
        }
    }

    LUMAFOLD_IN_CALLER void FillStretches(double squareDown, std::int32_t width) const {
        for (std::int32_t x = 0; x < width; ++x) {
            const double across = (x + 0.5 - shape.centreX) / shape.reachX;
            stretches[x] = Stretch<kKind>(std::min(across * across + squareDown, 1.0), shape.pull);
        }
    }

    LUMAFOLD_IN_CALLER void RenderRow(const WarpSampler& sampler, std::int32_t y, const RowView& rows) const {
        const double down = y + 0.5 - shape.centreY;
        const auto walk = [&](std::int32_t first, std::int32_t pixels, SamplePoints& points, auto take) {
            for (std::int32_t i = 0; i < pixels; ++i) {
                points.u[i] = shape.centreX + (first + i + 0.5 - shape.centreX) * stretches[first + i];
                points.v[i] = shape.centreY + down * stretches[first + i];
            }
            take();
        };
        sampler.WriteRow(0, rows.Width(), 1, walk, rows.Row(y));
    }
};

struct Implode {
    std::int64_t step; ///< percent a frame
    ImplodeKind kind;

    static std::optional<Implode> Plan(const PluginSettings& settings, CanvasSize, ImplodeKind kind) {
        if (settings.TransitionImplodeStep == 0) return {};
        return Implode{settings.TransitionImplodeStep, kind};
    }
    static RenderNeed Need(const PluginSettings&, ImplodeKind) { return {1, 7}; }
    std::int64_t Frames() const { return FramesBelow(100, step); }

    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        const std::int64_t percent = (index + 1) * step;
        Array<double> stretches(static_cast<std::size_t>(gap.size.width));
        if (!stretches) return {};
        const WarpShape shape = ShapeAt(gap, percent);
        if (kind == ImplodeKind::Burp)
            return BentCrossfade(gap, percent, Warp<ImplodeKind::Burp>{shape, stretches.data()});
        return BentCrossfade(gap, percent, Warp<ImplodeKind::QuantumSingularity>{shape, stretches.data()});
    }

    WarpShape ShapeAt(const Gap& gap, std::int64_t percent) const {
        enum Track : std::uint32_t { Still, Horizontal, Vertical };
        const PluginSettings& settings = gap.settings;
        const std::uint32_t track = settings.TransitionImplodeTrack;
        const double travel = 0.6 * static_cast<double>(percent - 50);
        const double x = settings.TransitionImplodeXPos + (track == Horizontal ? travel : 0.0);
        const double y = settings.TransitionImplodeYPos + (track == Vertical ? travel : 0.0);
        const double centreX = x * gap.size.width / 100, centreY = y * gap.size.height / 100;
        return {PullAt(settings.TransitionImplodeMax / 100.0, percent), centreX, centreY,
                std::max(centreX, gap.size.width - centreX), std::max(centreY, gap.size.height - centreY)};
    }

    /// `gravity` is the setting's.
    double PullAt(double gravity, std::int64_t percent) const {
        const auto swell = [](std::int64_t part, std::int64_t whole) {
            return PortableSin(std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole));
        };
        if (kind == ImplodeKind::QuantumSingularity) return 2 * gravity * swell(percent, 100);
        return percent < 75 ? gravity * swell(percent, 75) : gravity * swell(percent - 75, 25) / 3;
    }
};

} // namespace

constinit const Effect kBurp = EffectOf<Implode, ImplodeKind::Burp>();
constinit const Effect kQuantumSingularity = EffectOf<Implode, ImplodeKind::QuantumSingularity>();

} // namespace lumafold
