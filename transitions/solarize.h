// Solarize: a cross-fade in which the dark levels are turned over, up to a threshold that rises to the middle
// of the transition and falls back through the same values.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// Every channel of a 24-bit picture below `threshold` becomes 255 less itself; 256 and more turns all over.
void SolarizeFilter(DibHeader& picture, int threshold);

class Solarize {
public:
    static std::optional<Solarize> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    Solarize(std::int64_t step, float factor) : step_(step), factor_(factor) {}

    std::int64_t step_; ///< levels of 255 a frame
    float factor_;      ///< of the thresholds
};

} // namespace lumafold
