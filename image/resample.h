// Pictures in true colour, at other sizes, cut to a rectangle, shrunk into a box. Integer arithmetic
// throughout, every division truncating. Each returns a new picture, empty when it could not be had; the
// source is left alone.
#pragma once

#include "image/dib.h"

namespace lumafold {

/// The same picture at 24 bits.
OwnedDib DibToTrueColour(const DibHeader& source);

/// Scales by separate percentages, width first; 100 leaves an axis as it is.
OwnedDib DibScale(const DibHeader& source, std::int32_t percentX, std::int32_t percentY);

/// One axis each: stretching takes percentages above 100, shrinking below.
OwnedDib DibStretchWidth(const DibHeader& source, std::int32_t percent);
OwnedDib DibShrinkWidth(const DibHeader& source, std::int32_t percent);
OwnedDib DibStretchHeight(const DibHeader& source, std::int32_t percent);
OwnedDib DibShrinkHeight(const DibHeader& source, std::int32_t percent);

/// Cuts a rectangle out; what lies outside the picture becomes `fill`.
OwnedDib DibCropRect(const DibHeader& source, const Rect& rect, PixelValue fill);

/// The percentage that shrinks a picture into a box, 100 where it fits: pictures are never enlarged.
std::int32_t FitPercent(std::int32_t width, std::int32_t height, std::int32_t boxWidth,
                        std::int32_t boxHeight);
/// Where a picture of `size` begins on an axis with `room`: centred, or at the start when larger.
std::int32_t FitOffset(std::int32_t room, std::int32_t size);

} // namespace lumafold
