#include "transitions/solarize.h"

#include "transitions/compositing.h"

namespace lumafold {
namespace {

constexpr std::int64_t kLevels = 255;
constexpr std::int64_t kLastRising = 128;
constexpr float kAboveAllLevels = 256;

} // namespace

void SolarizeFilter(DibHeader& picture, int threshold) {
    if (threshold < 1) return;
    const auto last = static_cast<std::uint8_t>(std::min(threshold, 256) - 1);
    const RowView rows(picture);
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* row = rows.Row(y);
        for (std::size_t i = 0; i < rows.RowBytes(); ++i)
            row[i] = static_cast<std::uint8_t>(row[i] ^ (row[i] <= last ? 0xFF : 0));
    }
}

std::optional<Solarize> Solarize::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionSolarizeStep == 0) return {};
    return Solarize(settings.TransitionSolarizeStep,
                    static_cast<float>(static_cast<double>(settings.TransitionSolarizeIntensity) * 0.01));
}

std::int64_t Solarize::Frames() const { return LoopCount(step_, kLevels, step_); }

/// The falling half takes the rising one's thresholds back in reverse, so that the curve is symmetric in
/// frames whatever the step; past its end the first one stays.
int Solarize::Threshold(std::int64_t index) const {
    const std::int64_t rising = kLastRising / step_;
    const std::int64_t taken = index < rising ? index : std::max<std::int64_t>(2 * rising - 1 - index, 0);
    // A step beyond the rising half leaves nothing to take back.
    const float threshold = rising == 0 ? 0.0F : static_cast<float>(2 * (taken + 1) * step_);
    return static_cast<int>(std::min(threshold * factor_, kAboveAllLevels));
}

OwnedDib Solarize::Frame(const Gap& gap, std::int64_t index) const {
    OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>((index + 1) * step_));
    if (mix) SolarizeFilter(*mix, Threshold(index));
    return mix;
}

} // namespace lumafold
