// Writing a document: one file of a kind that its name tells, or a folder of numbered frames.
#pragma once

#include <cstdint>
#include <string>

#include "codecs/animation_writer.h"

namespace lumafold {

/// By the suffix: .gif, .png or .apng, .mng. False with `error` in one line, "cancelled" when `progress` gave
/// up; what stood there before is then still there. `bytes` is what was written.
bool SaveAnimation(const std::string& path, const Animation& animation, const FrameProgress& progress,
                   std::uint64_t& bytes, std::string& error);

/// "frame-0000.png" and so on, each as the screen shows it, into a folder that is made when it is missing, in
/// the place of those that an earlier run left there. All of them or, with `error` in one line, none.
bool SaveFrames(const std::string& folder, const Animation& animation, const FrameProgress& progress,
                std::string& error);

} // namespace lumafold
