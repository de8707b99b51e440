// What a pixel of any depth looks like.
#pragma once

#include "image/dib.h"

namespace lumafold::test {

inline Rgb ColourAt(const DibHeader& dib, std::int32_t x, std::int32_t y) {
    const PixelValue value = DibGetPixel(dib, x, y);
    Palette palette;
    return DibGetPalette(dib, palette) > 0 ? palette[value] : RgbOf(value);
}

} // namespace lumafold::test
