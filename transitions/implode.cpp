#include "transitions/implode.h"

#include <numbers>

#include "numbers/portable_math.h"
#include "numbers/quick_functions.h"
#include "transitions/compositing.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

/// Where the frame's warp has its centre, and how far it reaches.
struct WarpShape {
    double pull;
    double centreX, centreY, reachX, reachY;
};

/// The frame's pull: `gravity` is the setting's.
double PullAt(ImplodeKind kind, double gravity, std::int64_t percent) {
    const auto swell = [](std::int64_t part, std::int64_t whole) {
        return PortableSin(std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole));
    };
    if (kind == ImplodeKind::QuantumSingularity) return 2 * gravity * swell(percent, 100);
    return percent < 75 ? gravity * swell(percent, 75) : gravity * swell(percent - 75, 25) / 3;
}

/// Where the settings put the centre at `percent` of the way.
WarpShape ShapeAt(ImplodeKind kind, const PluginSettings& settings, std::int64_t percent, CanvasSize size) {
    enum Track : std::uint32_t { Still, Horizontal, Vertical };
    const std::uint32_t track = settings.TransitionImplodeTrack;
    const double travel = 0.6 * static_cast<double>(percent - 50);
    const double x = settings.TransitionImplodeXPos + (track == Horizontal ? travel : 0.0);
    const double y = settings.TransitionImplodeYPos + (track == Vertical ? travel : 0.0);
    WarpShape shape{};
    shape.pull = PullAt(kind, settings.TransitionImplodeMax / 100.0, percent);
    shape.centreX = x * size.width / 100;
    shape.centreY = y * size.height / 100;
    shape.reachX = std::max(shape.centreX, size.width - shape.centreX);
    shape.reachY = std::max(shape.centreY, size.height - shape.centreY);
    return shape;
}

/// sampled distance / distance, from the square of the distance. What lies outside stays as it is.
template <ImplodeKind Kind>
LUMAFOLD_IN_CALLER double Stretch(double square, double pull) {
    const double rest = 1 - square;
    const double aw = pull * (rest * rest);
    const double exponent = Kind == ImplodeKind::Burp ? 0.5 * aw : -0.5 * aw / (1 + aw);
    return QuickExp(std::max(exponent * QuickLog(square), -700.0));
}

/// The rows of one frame.
template <ImplodeKind Kind>
struct WarpLoop {
    const WarpSampler& sampler;
    const WarpShape& shape;
    double* stretches; // of the row at hand
    const RowView& rows;

    /// From both edges inwards: a centre in the middle has two rows at each distance.
    template <int>
    LUMAFOLD_IN_CALLER void Run() const {
        const std::int32_t height = rows.Height();
        double known = -1;
        for (std::int32_t i = 0; i < height; ++i) {
            const std::int32_t y = i % 2 == 0 ? i / 2 : height - 1 - i / 2;
            const double down = (y + 0.5 - shape.centreY) / shape.reachY;
            if (down * down != known) FillStretches(known = down * down);
            RenderRow(y);
        }
    }

    LUMAFOLD_IN_CALLER void FillStretches(double squareDown) const {
        for (std::int32_t x = 0; x < rows.Width(); ++x) {
            const double across = (x + 0.5 - shape.centreX) / shape.reachX;
            stretches[x] = Stretch<Kind>(std::min(across * across + squareDown, 1.0), shape.pull);
        }
    }

    LUMAFOLD_IN_CALLER void RenderRow(std::int32_t y) const {
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

template <ImplodeKind Kind>
OwnedDib Warped(const DibHeader& picture, const WarpShape& shape, PixelValue matte) {
    const std::int32_t width = picture.biWidth, height = picture.biHeight;
    const SamplePlane plane(picture, SamplePlane::Border::Nearest);
    Array<double> stretches(static_cast<std::size_t>(width));
    OwnedDib result = DibCreate(width, height, nullptr, 24);
    if (!plane || !stretches || !result) return {};
    const WarpSampler sampler(plane, matte);
    WithWidestLanes(WarpLoop<Kind>{sampler, shape, stretches.data(), result.Rows()});
    return result;
}

} // namespace

template <ImplodeKind Kind>
std::optional<Implode<Kind>> Implode<Kind>::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionImplodeStep == 0) return {};
    return Implode(settings.TransitionImplodeStep);
}

template <ImplodeKind Kind>
std::int64_t Implode<Kind>::Frames() const {
    return LoopCount(step_, 100, step_);
}

template <ImplodeKind Kind>
OwnedDib Implode<Kind>::Frame(const Gap& gap, std::int64_t index) const {
    const std::int64_t percent = (index + 1) * step_;
    const OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>(percent * 255 / 100));
    if (!mix) return {};
    return Warped<Kind>(*mix, ShapeAt(Kind, gap.settings, percent, gap.size),
                        gap.settings.TransitionMattcolour);
}

template class Implode<ImplodeKind::Burp>;
template class Implode<ImplodeKind::QuantumSingularity>;

} // namespace lumafold
