// Animations to GIF files: global palette, delays, transparency, the comment, an endless loop; each frame
// cropped to what changes on screen, so that the file is no larger than it need be and shows the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "codecs/animation.h"
#include "codecs/frame_progress.h"

namespace lumafold {

/// The whole file in memory, or empty with `error` set (true-colour frames, sides above 65535, no memory).
std::vector<std::uint8_t> EncodeGif(const Animation& animation, std::string& error,
                                    const FrameProgress& progress = {});

} // namespace lumafold
