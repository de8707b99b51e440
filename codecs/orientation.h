// Which way up a camera held the picture: the orientation an EXIF block tells, and pictures turned
// accordingly.
#pragma once

#include <cstdint>
#include <span>

#include "image/dib.h"

namespace lumafold {

/// The orientation, 1 (upright) to 8, in a TIFF-structured block ("II" or "MM" first); 1 where none can be
/// read.
int ExifOrientation(std::span<const std::uint8_t> tiff);

/// The picture as it is to be seen, at its own depth and palette. Throws std::bad_alloc.
OwnedDib Upright(OwnedDib stored, int orientation);

} // namespace lumafold
