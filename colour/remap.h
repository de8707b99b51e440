// Reducing frames to a palette: the nearest colour for each pixel, with or without error diffusion. The searches
// define every index; what makes them fast never changes one.
#pragma once

#include "image/dib.h"

namespace lumafold {

/// The first equal entry, else the first of the nearest by 3 dR^2 + 4 dG^2 + 2 dB^2; 0 when count is 0.
int FindNearestColour(int red, int green, int blue, const Palette& palette, int count);
/// The first equal entry, or -1.
int FindExactColour(int red, int green, int blue, const Palette& palette, int count);

/// Reduces pictures to one palette and keeps its lookup tables from picture to picture. `bits` is the depth asked
/// for (1 to 8), `count` the number of entries searched. Reads FastRemap, DitherBrightness and DitherContrast.
/// Each call returns a new picture of the source's size that the caller owns, or 0.
class Remapper {
public:
    Remapper(const Palette& palette, int bits, int count);

    DibHandle Remap(DibHandle picture);
    DibHandle Dither(DibHandle picture);

private:
    struct Tables;
    bool Prepare();

    const Palette palette_;
    const int bits_, count_;
    Array<std::uint8_t> cache_; // one index for each 15-bit colour
};

/// The same for one picture alone.
DibHandle RemapImage(DibHandle picture, const Palette& palette, int bits, int count);
DibHandle DitherImage(DibHandle picture, const Palette& palette, int bits, int count);

} // namespace lumafold
