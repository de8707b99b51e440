#include "transitions/solarize.h"

#include "transitions/compositing.h"

namespace lumafold {
namespace {

constexpr std::int64_t kLevels = 255;
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

OwnedDib Solarize::Frame(const Gap& gap, std::int64_t index) const {
    OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>((index + 1) * step_));
    const auto threshold = static_cast<float>(2 * RiseAndFall(index, step_) * step_) * factor_;
    if (mix) SolarizeFilter(*mix, static_cast<int>(std::min(threshold, kAboveAllLevels)));
    return mix;
}

} // namespace lumafold
