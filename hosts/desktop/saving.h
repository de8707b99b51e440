// Writing a document: one file of a kind that its name tells, or a folder of numbered frames.
#pragma once

#include <cstdint>
#include <string>

#include "codecs/animation.h"

namespace lumafold {

/// The file's name in a path, and that without its suffix.
std::string FileNamePart(const std::string& path);
std::string Stem(const std::string& path);

/// By the suffix: .gif, .png or .apng, .mng. False with `error` in one line; what stood there before is then
/// still there. `bytes` is what was written.
bool SaveAnimation(const std::string& path, const Animation& animation, std::uint64_t& bytes,
                   std::string& error);

/// "frame-0000.png" and so on, each as the screen shows it, into an existing folder.
bool SaveFrames(const std::string& folder, const Animation& animation, std::string& error);

} // namespace lumafold
