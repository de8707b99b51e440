// An animation as a host holds it: what the build driver's task, frames and comment came to; and what a
// writer of files is told of it, at once or frame by frame.
#pragma once

#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold {

struct AnimationFrame {
    OwnedDib image;
    std::int32_t delay;            ///< hundredths of a second
    std::int32_t transparentIndex; ///< -1 for none
};

struct Animation {
    std::int32_t width = 0, height = 0;
    std::int32_t paletteBits = 8; ///< 1 to 8, as the task said
    Palette palette{};
    std::vector<AnimationFrame> frames;
    std::string comment;    ///< "" for none
    std::int32_t plays = 0; ///< how often it runs, 0 for ever
};

/// What is known before the first frame. Indexes up to 255 may occur whatever `paletteBits` says.
struct AnimationFacts {
    std::int32_t width = 0, height = 0;
    std::int32_t paletteBits = 8; ///< 1 to 8
    Palette palette{};
    std::int32_t plays = 0; ///< how often it runs, 0 for ever
};

inline AnimationFacts FactsOf(const Animation& animation) {
    return {animation.width, animation.height, animation.paletteBits, animation.palette, animation.plays};
}

/// A frame whose picture belongs to somebody else.
struct FrameView {
    const DibHeader& picture;
    std::int32_t delay; ///< hundredths of a second
    /// Of a pixel that leaves what is there: an index, or a colour; -1 for none.
    std::int32_t transparentIndex;
};

} // namespace lumafold
