// What a person is told about a finished animation.
#pragma once

#include <cstdint>
#include <string>

#include "codecs/animation.h"

namespace lumafold {

/// "1.2 MB (1234567 bytes)".
std::string SizeText(std::uint64_t bytes);

/// "216 colours": those that some pixel shows; frames of more than 8 bits are "true colour".
std::string ColoursText(const Animation& animation);

/// "5.50 s".
std::string DurationText(const Animation& animation);

/// "51 frames, 640x480, 216 colours, 5.50 s, 1.2 MB (1234567 bytes)".
std::string AnimationText(const Animation& animation, std::uint64_t bytes);

} // namespace lumafold
