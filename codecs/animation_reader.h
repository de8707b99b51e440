// Animation files back to animations, for a host that opens what was saved: GIF, animated PNG, and the MNG
// files that are written here. A still picture is an animation of one frame.
#pragma once

#include <optional>
#include <span>

#include "codecs/animation.h"

namespace lumafold {

struct ReadAnimation {
    std::optional<Animation> animation;
    std::string error; ///< what is wrong, without the file's name; "" on success
};

/// Every frame is the whole screen as it was seen: indexed where all of them together have no more than 256
/// colours, else at 24 bits. What a file clears after it was drawn comes back white. `mostPixels` bounds the
/// pixels of all screens together.
ReadAnimation DecodeAnimation(std::span<const std::uint8_t> file, std::uint64_t mostPixels);

/// The same from a file; the error then tells why it cannot be opened or read.
ReadAnimation DecodeAnimationFile(const std::string& path, std::uint64_t mostPixels);

} // namespace lumafold
