// An animation as a host holds it: what the build driver's task, frames and comment came to. Writers of files
// take it whole.
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

} // namespace lumafold
