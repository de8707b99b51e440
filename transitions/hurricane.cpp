// Hurricane: the cross-fade is turned about the middle, most at its eye and not at all at the rim, and
// smeared along the turn. Both swell up to the middle of the way and die down.
#include <cmath>

#include "numbers/portable_math.h"
#include "numbers/turn_table.h"
#include "transitions/run.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

using std::numbers::pi;

/// From a pixel to its first sample, and from each sample to the next.
struct Sweep {
    Turn first, step;
};

/// What one frame does to the picture. It turns clockwise, so what a pixel shows lies counter-clockwise of
/// it.
struct Whirl {
    double angle;  ///< at the eye, in radians
    double radius; ///< of the smear, in pixels
    std::int32_t samples;
    double halfWidth, halfHeight; ///< of the picture
    const TurnTable& turns;
    Sweep* sweeps; ///< of the left half of the row at hand, the middle column included

    /// Pixels mirrored at the middle have their sweeps in common.
    LUMAFOLD_IN_CALLER void Render(const WarpSampler& sampler, const RowView& rows) const {
        const std::int32_t last = rows.Height() - 1;
        for (std::int32_t y = 0; y <= last - y; ++y) {
            FillSweeps(y, (rows.Width() + 1) / 2);
            RenderRow(sampler, y, rows);
            if (y < last - y) RenderRow(sampler, last - y, rows);
        }
    }

    LUMAFOLD_IN_CALLER void FillSweeps(std::int32_t row, std::int32_t count) const {
        const double down = row + 0.5 - halfHeight, y = down / halfHeight;
        for (std::int32_t i = 0; i < count; ++i) {
            const double right = i + 0.5 - halfWidth, x = right / halfWidth;
            const double calm = 1 - std::min(x * x + y * y, 1.0);
            const double turn = angle * (calm * calm);
            const double distance = std::max(std::sqrt(right * right + down * down), radius);
            const double half = distance > 0 ? radius / distance : 0.0;
            sweeps[i] = {turns.At(turn - half), turns.At(2 * half / (samples - 1))};
        }
    }

    LUMAFOLD_IN_CALLER void RenderRow(const WarpSampler& sampler, std::int32_t row,
                                      const RowView& rows) const {
        const double down = (row + 0.5 - halfHeight) / halfHeight;
        const std::int32_t last = rows.Width() - 1;
        const auto walk = [&](std::int32_t first, std::int32_t pixels, SamplePoints& points, auto take) {
            double x[SamplePoints::kMost], y[SamplePoints::kMost];
            double cosines[SamplePoints::kMost], sines[SamplePoints::kMost]; // of the steps
            for (std::int32_t i = 0; i < pixels; ++i) {
                const std::int32_t column = first + i;
                const double right = (column + 0.5 - halfWidth) / halfWidth;
                const Sweep& sweep = sweeps[std::min(column, last - column)];
                x[i] = right * sweep.first.cosine + down * sweep.first.sine;
                y[i] = down * sweep.first.cosine - right * sweep.first.sine;
                cosines[i] = sweep.step.cosine;
                sines[i] = sweep.step.sine;
            }
            for (std::int32_t sample = 0; sample < samples; ++sample) {
                for (std::int32_t i = 0; i < pixels; ++i) {
                    points.u[i] = halfWidth + x[i] * halfWidth;
                    points.v[i] = halfHeight + y[i] * halfHeight;
                    const double turned = x[i] * cosines[i] + y[i] * sines[i];
                    y[i] = y[i] * cosines[i] - x[i] * sines[i];
                    x[i] = turned;
                }
                take();
            }
        };
        sampler.WriteRow(0, last + 1, samples, walk, rows.Row(row));
    }
};

struct Hurricane {
    /// Tenths of a pixel; far beyond the dialog, where one frame would take minutes.
    static constexpr std::uint32_t kLongestSmear = 20000;

    std::int64_t step; ///< percent a frame

    static std::optional<Hurricane> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionMotionBlurStep == 0) return {};
        if (settings.TransitionMotionBlurRadius > kLongestSmear) return {};
        return Hurricane{settings.TransitionMotionBlurStep};
    }
    static RenderNeed Need(const PluginSettings&) { return {2, 6}; }
    std::int64_t Frames() const { return FramesBelow(100, step); }
    TurnTable Start(const Gap&) const { return {}; }

    OwnedDib Frame(const Gap& gap, const TurnTable& turns, std::int64_t index) const {
        const auto [width, height] = gap.size;
        const std::int64_t percent = (index + 1) * step;
        const double swell = PortableSin(pi * static_cast<double>(percent) / 100);
        const double angle = gap.settings.TransitionMotionBlurAngle * (pi / 180) * swell;
        const double radius = gap.settings.TransitionMotionBlurRadius / 10.0 * swell;
        const std::int32_t samples = std::max(1, static_cast<std::int32_t>(std::ceil(2 * radius))) + 1;
        Array<Sweep> sweeps((static_cast<std::size_t>(width) + 1) / 2);
        if (!sweeps) return {};
        return BentCrossfade(gap, percent,
                             Whirl{angle, radius, samples, width / 2.0, height / 2.0, turns, sweeps.data()});
    }
};

} // namespace

constinit const Effect kHurricane = EffectOf<Hurricane>();

} // namespace lumafold
