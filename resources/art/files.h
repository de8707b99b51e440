// The picture files of Windows resources: bitmaps, a cursor and an icon of several sizes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "resources/art/surface.h"

namespace lumafold::art {

using Bytes = std::vector<std::uint8_t>;

/// 24 bits a pixel, no cover.
Bytes TrueColourBitmap(const Surface& surface);
/// 32 bits a pixel: colours as if they hid all, and their cover.
Bytes CoverBitmap(const Surface& surface);
/// 8 bits a pixel behind a table of 256 greys; `levels` are rows from the top.
Bytes GreyBitmap(int width, int height, std::span<const std::uint8_t> levels);
/// 32 bits a pixel with a mask for screens that know no soft edges.
Bytes Cursor(const Surface& surface, int hotX, int hotY);
Bytes Icon(std::span<const Surface> sizes);

} // namespace lumafold::art
