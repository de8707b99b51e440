// Framework: a cross-fade in which every frame is smeared towards the middle, most in the middle of the fade.
// It reads no setting, though the dialog shows three for it (docs/quirks.md 39).
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// Each pixel of a 24-bit picture becomes the mean of twenty between it and a point towards the middle, which
/// `intensity` of 1 to 500 puts the farther away the larger it is.
OwnedDib ZoomBlur(const DibHeader& picture, int intensity);

class Framework {
public:
    static std::optional<Framework> Plan(const PluginSettings&, CanvasSize) { return Framework(); }
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;
};

} // namespace lumafold
