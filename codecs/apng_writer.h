// Animations to PNG files that move: palette or true colour as the frames have it, delays, the comment, an
// endless loop. Who knows only still PNG files sees the first frame.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "codecs/animation.h"
#include "codecs/frame_progress.h"

namespace lumafold {

/// The whole file in memory, or empty with `error` set (no frames, sides above 1000000, no memory).
std::vector<std::uint8_t> EncodeApng(const Animation& animation, std::string& error,
                                     const FrameProgress& progress = {});

} // namespace lumafold
