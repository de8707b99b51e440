// Hurricane: the cross-fade is turned about the middle, most at its eye and not at all at the rim, and
// smeared along the turn. Both swell up to the middle of the way and die down.
#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

constexpr double kPi = 3.14159265358979323846;
/// Tenths of a pixel; far beyond the dialog, where one frame would take minutes.
constexpr std::uint32_t kLongestSmear = 20000;

struct Turn {
    double cosine, sine;
};

/// Cosine and sine to 16 digits: the nearest of 1024 directions, turned by the small rest.
class TurnTable {
public:
    TurnTable() : directions_(kDirections) {
        for (std::size_t i = 0; i < kDirections && directions_; ++i) {
            const double angle = static_cast<double>(i) * kSpacing;
            directions_[i] = {PortableCos(angle), PortableSin(angle)};
        }
    }
    explicit operator bool() const { return static_cast<bool>(directions_); }

    /// Radians, |angle| below 10^9.
    Turn At(double angle) const {
        const auto nearest = static_cast<std::int64_t>(std::floor(angle * (1 / kSpacing) + 0.5));
        const double rest = angle - static_cast<double>(nearest) * kSpacing, z = rest * rest;
        const double cosine = 1 - z * (0.5 - z * (1.0 / 24));
        const double sine = rest - rest * z * (1.0 / 6 - z * (1.0 / 120));
        const Turn& from = directions_[static_cast<std::size_t>(nearest) & (kDirections - 1)];
        return {from.cosine * cosine - from.sine * sine, from.sine * cosine + from.cosine * sine};
    }

private:
    static constexpr std::size_t kDirections = 1024;
    static constexpr double kSpacing = 2 * kPi / kDirections;

    Array<Turn> directions_;
};

/// One frame's wind. The picture turns clockwise, so what a pixel shows lies counter-clockwise of it.
struct Wind {
    double angle;  // at the eye, in radians
    double radius; // of the smear, in pixels
    std::int32_t samples;

    explicit Wind(std::int64_t p) {
        const double swell = PortableSin(kPi * static_cast<double>(p) / 100);
        angle = pluginSettings.TransitionMotionBlurAngle * (kPi / 180) * swell;
        radius = pluginSettings.TransitionMotionBlurRadius / 10.0 * swell;
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

class HurricaneRenderer {
public:
    HurricaneRenderer(std::int32_t width, std::int32_t height)
        : plane_(width, height), halfWidth_(width / 2.0), halfHeight_(height / 2.0),
          sweeps_(static_cast<std::size_t>((width + std::int64_t{1}) / 2)) {}
    explicit operator bool() const { return plane_ && turns_ && sweeps_; }

    OwnedDib Render(const DibHeader* mix, const Wind& wind) {
        if (!plane_.Load(mix, SamplePlane::Border::Nearest)) return {};
        OwnedDib result(DibCreate(plane_.Width(), plane_.Height(), nullptr, 24));
        const LockedDib locked(result.Get());
        if (!locked) return {};
        const WarpSampler sampler(plane_, pluginSettings.TransitionMattcolour);
        const RowView rows(locked.Get());
        // Pixels mirrored at the middle have their sweeps in common.
        const std::int32_t last = plane_.Height() - 1;
        for (std::int32_t y = 0; y <= last - y; ++y) {
            FillSweeps(wind, y);
            RenderRow(sampler, wind, y, rows.Row(y));
            if (y < last - y) RenderRow(sampler, wind, last - y, rows.Row(last - y));
        }
        return result;
    }

private:
    void FillSweeps(const Wind& wind, std::int32_t row) {
        const double down = row + 0.5 - halfHeight_, y = down / halfHeight_;
        for (std::size_t i = 0; i < sweeps_.size(); ++i) {
            const double right = static_cast<double>(i) + 0.5 - halfWidth_, x = right / halfWidth_;
            const double calm = 1 - std::min(x * x + y * y, 1.0);
            const double turn = wind.angle * (calm * calm);
            const double distance = std::max(std::sqrt(right * right + down * down), wind.radius);
            const double half = distance > 0 ? wind.radius / distance : 0.0;
            sweeps_[i] = {turns_.At(turn - half), turns_.At(2 * half / (wind.samples - 1))};
        }
    }

    void RenderRow(const WarpSampler& sampler, const Wind& wind, std::int32_t row, std::uint8_t* out) const {
        const double y = (row + 0.5 - halfHeight_) / halfHeight_;
        const std::int32_t last = plane_.Width() - 1;
        for (std::int32_t column = 0; column <= last; ++column, out += 3) {
            const double x = (column + 0.5 - halfWidth_) / halfWidth_;
            const Sweep& sweep = sweeps_[static_cast<std::size_t>(std::min(column, last - column))];
            sampler.Write(Arc(x, y, sweep, halfWidth_, halfHeight_), wind.samples, out);
        }
    }

    SamplePlane plane_;
    double halfWidth_, halfHeight_;
    TurnTable turns_;
    Array<Sweep> sweeps_;
};

bool SettingsServe() {
    return pluginSettings.TransitionMotionBlurStep != 0 &&
           pluginSettings.TransitionMotionBlurRadius <= kLongestSmear;
}

} // namespace

int Hurricane(TransitionContext& context) {
    EffectRun run(context);
    if (!run || !SettingsServe()) return kEffectFailed;
    HurricaneRenderer renderer(run.Width(), run.Height());
    if (!renderer) return kEffectFailed;
    const std::int64_t step = pluginSettings.TransitionMotionBlurStep;
    for (std::int64_t p = step; p < 100; p += step) {
        OwnedDib frame;
        {
            const OwnedDib mix(DibCrossfade(run.Source(), run.Target(), static_cast<int>(p * 255 / 100)));
            const LockedDib locked(mix.Get());
            if (!locked) return kEffectFailed;
            frame = renderer.Render(locked.Get(), Wind(p));
        }
        if (!run.Emit(std::move(frame))) return kEffectFailed;
    }
    return kEffectDone;
}
std::int64_t HurricaneFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionMotionBlurStep;
    return SettingsServe() ? 1 + LoopCount(step, 100, step) : 0;
}

} // namespace lumafold
