// What a person is told about a finished animation.
#pragma once

#include <cstdint>
#include <string>

#include "codecs/animation.h"

namespace lumafold {

/// "1.2 MB (1234567 bytes)".
std::string SizeText(std::uint64_t bytes);

/// Which colours are in use, told from frame after frame.
class ColourCount {
public:
    void Add(const FrameView& frame);
    /// "216 colours": those that some pixel shows; frames of more than 8 bits are "true colour".
    std::string Text() const;

private:
    bool trueColour_ = false;
    std::array<bool, 256> used_{};
};
std::string ColoursText(const Animation& animation);

/// "5.50 s".
std::string DurationText(std::int64_t hundredths);
std::string DurationText(const Animation& animation);

} // namespace lumafold
