// What a pixel of any depth looks like.
#pragma once

#include "image/dib.h"

namespace lumafold::test {

inline Rgb ColourAt(const DibHeader* dib, std::int32_t x, std::int32_t y) {
    const PixelValue value = DibGetPixel(dib, x, y);
    Palette palette;
    if (DibGetPalette(dib, palette) > 0 && dib->biBitCount <= 8) return palette[value];
    return {static_cast<std::uint8_t>(RedOf(value)), static_cast<std::uint8_t>(GreenOf(value)),
            static_cast<std::uint8_t>(BlueOf(value))};
}

} // namespace lumafold::test
