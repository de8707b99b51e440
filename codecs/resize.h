// Pictures made larger or smaller as they are loaded, in linear light.
#pragma once

#include "codecs/decode.h"

namespace lumafold {

struct PictureSize {
    std::int32_t width = 0, height = 0; ///< pixels
    friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

/// How a picture of other proportions comes to an exact size.
enum class Fit {
    Contain, ///< whole, with the matte beside it
    Cover,   ///< filling it, cut evenly on both sides
    Stretch, ///< out of proportion
};

struct SizeRequest {
    enum class Kind {
        Keep,
        Exact,  ///< `size`, by `fit`
        AtMost, ///< within `size`, in proportion; never larger than it is
        Scale,  ///< by `percent`, in proportion; no side below one pixel
    };
    Kind kind = Kind::Keep;
    PictureSize size{}; ///< sides 1 to kLargestSide
    Fit fit = Fit::Contain;
    double percent = 100; ///< above 0
    PixelValue matte = 0; ///< 0x00BBGGRR
};

/// The size that Resized gives to a picture of size `from`, whose sides are at least 1; sides are cut at
/// 2 * kLargestSide, which is too large.
PictureSize SizeFor(const SizeRequest& request, PictureSize from);

/// The picture at the size it is asked to have, 24 bits deep; as it came, palette included, where that is its
/// own size already. `mostPixels` bounds the new width x height. An error, as decoding gives it, for a size
/// that is out of bounds and for want of memory.
DecodedPicture Resized(OwnedDib picture, const SizeRequest& request, std::uint64_t mostPixels);

} // namespace lumafold
