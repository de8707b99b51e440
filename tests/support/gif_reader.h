// Plays a GIF file by the format's own rules, sharing nothing with the writer under test: what a viewer would
// show after every frame, and what else the file says.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold::test {

struct PlayedFrame {
    int left = 0, top = 0, width = 0, height = 0;
    int delay = 0, disposal = 0, transparent = -1;
    std::vector<PixelValue> screen; ///< row by row; kNoPixel where nothing has been drawn
};

struct PlayedGif {
    std::string problem; ///< the first offence against the format; "" for none
    int width = 0, height = 0;
    std::vector<Rgb> table; ///< the global one
    int loops = -1;         ///< 0 for ever, -1 not said
    std::string comment;
    std::vector<PlayedFrame> frames;
};

PlayedGif PlayGif(std::span<const std::uint8_t> file);

} // namespace lumafold::test
