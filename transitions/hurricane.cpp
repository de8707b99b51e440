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

/// A pixel's samples, one after the other.
class Arc {
public:
    Arc(double x, double y, const Sweep& sweep, double halfWidth, double halfHeight)
        : x_(x * sweep.first.cosine + y * sweep.first.sine),
          y_(y * sweep.first.cosine - x * sweep.first.sine), step_(sweep.step), halfWidth_(halfWidth),
          halfHeight_(halfHeight) {}

    SamplePoint Next() {
        const SamplePoint point{halfWidth_ + x_ * halfWidth_, halfHeight_ + y_ * halfHeight_};
        const double x = x_ * step_.cosine + y_ * step_.sine;
        y_ = y_ * step_.cosine - x_ * step_.sine;
        x_ = x;
        return point;
    }

private:
    double x_, y_;
    Turn step_;
    double halfWidth_, halfHeight_;
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
        const WarpSampler sampler(plane_, matte);
        const RowView rows = result.Rows();
        // Pixels mirrored at the middle have their sweeps in common.
        const std::int32_t last = plane_.Height() - 1;
        for (std::int32_t y = 0; y <= last - y; ++y) {
            FillSweeps(y);
            RenderRow(sampler, y, rows.Row(y));
            if (y < last - y) RenderRow(sampler, last - y, rows.Row(last - y));
        }
        return result;
    }

private:
    void FillSweeps(std::int32_t row) {
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

    void RenderRow(const WarpSampler& sampler, std::int32_t row, std::uint8_t* out) const {
        const double y = (row + 0.5 - halfHeight_) / halfHeight_;
        const std::int32_t last = plane_.Width() - 1;
        for (std::int32_t column = 0; column <= last; ++column, out += 3) {
            const double x = (column + 0.5 - halfWidth_) / halfWidth_;
            const Sweep& sweep = sweeps_[static_cast<std::size_t>(std::min(column, last - column))];
            sampler.Write(Arc(x, y, sweep, halfWidth_, halfHeight_), whirl_.samples, out);
        }
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
