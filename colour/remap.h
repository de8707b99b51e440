// Reducing frames to a palette: the nearest colour for each pixel, with or without error diffusion. The
// searches of colour/nearest.h define every index; what makes them fast never changes one.
#pragma once

#include "colour/nearest.h"

namespace lumafold {

/// Reduces pictures of 1, 4, 8 or 24 bits to one palette and keeps its lookup tables from picture to picture.
/// `bits` is the depth asked for (1 to 8; the pictures have the depth DibCreate makes of it), `count` the
/// number of entries searched, 0 to 256. Reads FastRemap, DitherBrightness and DitherContrast at each call.
/// Each call returns a new picture of the source's size that the caller owns, or 0 for any other depth or for
/// lack of memory.
class Remapper {
public:
    Remapper(const Palette& palette, int bits, int count);

    DibHandle Remap(DibHandle picture);
    DibHandle Dither(DibHandle picture);

private:
    using IndexMap = std::array<std::uint8_t, 256>;

    bool PrepareSearch();
    bool PrepareCache();
    int FindExtreme(int level) const;
    IndexMap MapTable(const DibHeader& source) const;
    bool FillNearest(const DibHeader* source, DibHeader* target);
    bool FillDithered(const DibHeader* source, DibHeader* target);
    DibHandle Reduce(DibHandle picture, bool (Remapper::*fill)(const DibHeader*, DibHeader*));

    const Palette palette_;
    const int bits_, count_;
    NearestSearch search_;
    Array<std::uint8_t> cache_; ///< one index for each 15-bit cell
};

/// The same for one picture alone.
DibHandle RemapImage(DibHandle picture, const Palette& palette, int bits, int count);
DibHandle DitherImage(DibHandle picture, const Palette& palette, int bits, int count);

} // namespace lumafold
