// How long frames stand in files that people play: browsers show a frame of less than 0.02 s for 0.1 s.
#pragma once

#include "codecs/animation.h"

namespace lumafold {

inline constexpr std::int32_t kShortestDelay = 2; ///< hundredths of a second

/// Gives every frame at least kShortestDelay and takes that time from the frames that follow, from the first
/// ones again after the last, so that the whole keeps its length as far as there is time to take. How many
/// frames stood shorter.
std::size_t LengthenShortFrames(Animation& animation);

} // namespace lumafold
