#include "transitions/hurricane.h"

#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

using std::numbers::pi;

/// Tenths of a pixel; far beyond the dialog, where one frame would take minutes.
constexpr std::uint32_t kLongestSmear = 20000;

/// What one frame does to the picture. It turns clockwise, so what a pixel shows lies counter-clockwise of
/// it.
struct Whirl {
    double angle;  // at the eye, in radians
    double radius; // of the smear, in pixels
    std::int32_t samples;

    Whirl(const PluginSettings& settings, std::int64_t percent) {
        const double swell = PortableSin(pi * static_cast<double>(percent) / 100);
        angle = settings.TransitionMotionBlurAngle * (pi / 180) * swell;
        radius = settings.TransitionMotionBlurRadius / 10.0 * swell;
        samples = std::max(1, static_cast<std::int32_t>(std::ceil(2 * radius))) + 1;
    }
};

/// From a pixel to its first sample, and from each sample to the next.
struct Sweep {
    Turn first, step;
};

class WhirlRenderer {
public:
    WhirlRenderer(const DibHeader& picture, const TurnTable& turns, const Whirl& whirl)
        : plane_(picture, SamplePlane::Border::Nearest), turns_(turns), whirl_(whirl),
          halfWidth_(picture.biWidth / 2.0), halfHeight_(picture.biHeight / 2.0),
          sweeps_(static_cast<std::size_t>((picture.biWidth + std::int64_t{1}) / 2)) {}

    OwnedDib Render(PixelValue matte) {
        OwnedDib result = DibCreate(plane_.Width(), plane_.Height(), nullptr, 24);
        if (!result || !plane_ || !sweeps_) return {};
        WithWidestLanes(Loop{*this, WarpSampler(plane_, matte), result.Rows()});
        return result;
    }

private:
    struct Loop {
        WhirlRenderer& whirl;
        WarpSampler sampler;
        RowView rows;

        template <int>
        LUMAFOLD_IN_CALLER void Run() const {
            // Pixels mirrored at the middle have their sweeps in common.
            const std::int32_t last = rows.Height() - 1;
            for (std::int32_t y = 0; y <= last - y; ++y) {
                whirl.FillSweeps(y);
                whirl.RenderRow(sampler, y, rows.Row(y));
                if (y < last - y) whirl.RenderRow(sampler, last - y, rows.Row(last - y));
            }
        }
    };

    LUMAFOLD_IN_CALLER void FillSweeps(std::int32_t row) {
        const double down = row + 0.5 - halfHeight_, y = down / halfHeight_;
        for (std::size_t i = 0; i < sweeps_.size(); ++i) {
            const double right = static_cast<double>(i) + 0.5 - halfWidth_, x = right / halfWidth_;
            const double calm = 1 - std::min(x * x + y * y, 1.0);
            const double turn = whirl_.angle * (calm * calm);
            const double distance = std::max(std::sqrt(right * right + down * down), whirl_.radius);
            const double half = distance > 0 ? whirl_.radius / distance : 0.0;
            sweeps_[i] = {turns_.At(turn - half), turns_.At(2 * half / (whirl_.samples - 1))};
        }
    }

    LUMAFOLD_IN_CALLER void RenderRow(const WarpSampler& sampler, std::int32_t row, std::uint8_t* out) const {
        const double down = (row + 0.5 - halfHeight_) / halfHeight_;
        const std::int32_t last = plane_.Width() - 1;
        const auto walk = [&](std::int32_t first, std::int32_t pixels, SamplePoints& points, auto take) {
            double x[SamplePoints::kMost], y[SamplePoints::kMost];
            double cosines[SamplePoints::kMost], sines[SamplePoints::kMost]; // of the steps
            for (std::int32_t i = 0; i < pixels; ++i) {
                const std::int32_t column = first + i;
                const double right = (column + 0.5 - halfWidth_) / halfWidth_;
                const Sweep& sweep = sweeps_[static_cast<std::size_t>(std::min(column, last - column))];
                x[i] = right * sweep.first.cosine + down * sweep.first.sine;
                y[i] = down * sweep.first.cosine - right * sweep.first.sine;
                cosines[i] = sweep.step.cosine;
                sines[i] = sweep.step.sine;
            }
            for (std::int32_t sample = 0; sample < whirl_.samples; ++sample) {
                for (std::int32_t i = 0; i < pixels; ++i) {
                    points.u[i] = halfWidth_ + x[i] * halfWidth_;
                    points.v[i] = halfHeight_ + y[i] * halfHeight_;
                    const double turned = x[i] * cosines[i] + y[i] * sines[i];
                    y[i] = y[i] * cosines[i] - x[i] * sines[i];
                    x[i] = turned;
                }
                take();
            }
        };
        sampler.WriteRow(0, last + 1, whirl_.samples, walk, out);
    }

    SamplePlane plane_;
    const TurnTable& turns_;
    Whirl whirl_;
    double halfWidth_, halfHeight_;
    Array<Sweep> sweeps_; // of the left half of the row at hand
};

} // namespace

std::optional<Hurricane> Hurricane::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionMotionBlurStep == 0) return {};
    if (settings.TransitionMotionBlurRadius > kLongestSmear) return {};
    return Hurricane(settings.TransitionMotionBlurStep);
}

std::int64_t Hurricane::Frames() const { return LoopCount(step_, 100, step_); }

OwnedDib HurricanePainter::Frame(std::int64_t index) const {
    const std::int64_t percent = (index + 1) * step_;
    const OwnedDib mix = DibCrossfade(gap_.source, gap_.target, static_cast<int>(percent * 255 / 100));
    if (!mix) return {};
    return WhirlRenderer(*mix, turns_, Whirl(gap_.settings, percent))
        .Render(gap_.settings.TransitionMattcolour);
}

} // namespace lumafold
