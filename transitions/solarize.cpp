// Solarize: a cross-fade in which the dark levels are turned over, up to a threshold that rises to the middle
// of the transition and falls back through the same values.
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

constexpr std::int64_t kLevels = 255;
constexpr std::int64_t kLastRising = 128;
constexpr float kAboveAllLevels = 256;

/// The thresholds before scaling. The falling half takes back what the rising one stored instead of working
/// it out, so the curve is symmetric in frames whatever the step; past its end the first value stays.
class ThresholdCurve {
public:
    float Next(std::int64_t level) {
        if (level <= kLastRising) {
            const auto threshold = static_cast<float>(2 * level);
            history_[static_cast<std::size_t>(count_++)] = threshold;
            return threshold;
        }
        --count_;
        return history_[static_cast<std::size_t>(std::max<std::int64_t>(count_, 0))];
    }

private:
    std::array<float, kLastRising> history_{}; // a step of 1 fills it
    std::int64_t count_ = 0;
};

/// Every channel below the threshold becomes 255 less itself.
void TurnOver(DibHeader* picture, int threshold) {
    if (threshold < 1) return;
    const auto last = static_cast<std::uint8_t>(threshold - 1);
    const RowView rows(picture);
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* row = rows.Row(y);
        const std::size_t bytes = static_cast<std::size_t>(rows.Width()) * 3;
        for (std::size_t i = 0; i < bytes; ++i) {
            row[i] = static_cast<std::uint8_t>(row[i] ^ (row[i] <= last ? 0xFF : 0));
        }
    }
}

OwnedDib SolarizedMix(const EffectRun& run, int level, int threshold) {
    OwnedDib mix(DibCrossfade(run.Source(), run.Target(), level));
    const LockedDib locked(mix.Get());
    if (!locked) return {};
    TurnOver(locked.Get(), threshold);
    return mix;
}

} // namespace

int Solarize(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionSolarizeStep;
    if (!run || step == 0) return kEffectFailed;
    const auto factor =
        static_cast<float>(static_cast<double>(pluginSettings.TransitionSolarizeIntensity) * 0.01);
    ThresholdCurve curve;
    for (std::int64_t level = step; level < kLevels; level += step) {
        const auto threshold = static_cast<int>(std::min(curve.Next(level) * factor, kAboveAllLevels));
        if (!run.Emit(SolarizedMix(run, static_cast<int>(level), threshold))) return kEffectFailed;
    }
    return kEffectDone;
}
std::int64_t SolarizeFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionSolarizeStep;
    return step == 0 ? 0 : 1 + LoopCount(step, kLevels, step);
}

} // namespace lumafold
