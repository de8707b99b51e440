// Animations to MNG files of low complexity: one small PNG picture for each frame, put where it belongs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "codecs/animation.h"
#include "codecs/frame_progress.h"

namespace lumafold {

/// The whole file in memory, or empty with `error` set (no frames, sides above 1000000, no memory).
std::vector<std::uint8_t> EncodeMng(const Animation& animation, std::string& error,
                                    const FrameProgress& progress = {});

} // namespace lumafold
