// Solarize: a cross-fade in which the dark levels are turned over, up to a threshold that rises to the middle
// of the transition and falls back through the same values.
#include "transitions/compositing.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

/// Every channel of a 24-bit picture below `threshold` becomes 255 less itself; 256 and more turns all over.
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

struct Solarize {
    std::int64_t step; ///< levels of 255 a frame
    float factor;      ///< of the thresholds

    static std::optional<Solarize> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionSolarizeStep == 0) return {};
        const double percent = settings.TransitionSolarizeIntensity;
        return Solarize{settings.TransitionSolarizeStep, static_cast<float>(percent * 0.01)};
    }
    std::int64_t Frames() const { return FramesBelow(255, step); }

    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        constexpr float kAboveAllLevels = 256;
        OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>((index + 1) * step));
        const auto threshold = static_cast<float>(2 * RiseAndFall(index, step) * step) * factor;
        if (mix) SolarizeFilter(*mix, static_cast<int>(std::min(threshold, kAboveAllLevels)));
        return mix;
    }
};

} // namespace

constinit const Effect kSolarize = EffectOf<Solarize>();

} // namespace lumafold
