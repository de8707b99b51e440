// The nine fixed palettes, and how many bits a number of colours needs.
#pragma once

#include "image/dib_format.h"

namespace lumafold {

inline constexpr int kFixedPaletteCount = 9;
inline constexpr int kDefaultFixedPalette = 6;

/// The colour count of palette `number`; any other number is the default one. Outputs may be null. Entries
/// beyond the count are zero. `bits` is 1, 4, 5, 6, 7 or 8.
int BuildFixedPalette(Palette* palette, int* bits, std::int32_t number);

/// 1 bit up to 2 colours, 2 up to 4, and so on to 7 up to 128, 8 above.
int PaletteBitsFor(int colours);

} // namespace lumafold
