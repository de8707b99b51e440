// Plays animations by their formats' own rules, sharing nothing with the writers under test: the pictures
// inside are read by libpng and giflib.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold::test {

struct PlayedPicture {
    int left = 0, top = 0, width = 0, height = 0;
    long delay = 0;                   ///< hundredths of a second
    int transparent = -1;             ///< the index of holes, -1 for none; PNG has more than one
    std::vector<PixelValue> screen{}; ///< row by row; kNoPixel where nothing has been drawn
};

struct Played {
    std::string problem; ///< the first offence against the format; "" for none
    int width = 0, height = 0, depth = 0, colourType = -1;
    long frames = 0; ///< as the head says
    bool endless = false;
    std::string comment;
    std::vector<PlayedPicture> pictures;
};

Played PlayApng(std::span<const std::uint8_t> file);
Played PlayMng(std::span<const std::uint8_t> file);
Played PlayGif(std::span<const std::uint8_t> file);

} // namespace lumafold::test
