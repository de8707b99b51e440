// Pictures in the kinds of files that other programs make, by the kinds' own libraries: composed here, or
// kept as libwebp 1.2, libtiff 4.5 and libheif 1.15 wrote them.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <png.h>

#include "image/dib.h"

namespace lumafold::test {

using FileBytes = std::vector<std::uint8_t>;

/// 8-bit red, green, blue and opacity, row by row from the top.
struct RgbaPicture {
    int width, height;
    std::vector<std::uint8_t> samples;
};
/// Smooth, which lossy kinds keep closely, and different in every corner and channel.
RgbaPicture SmoothPicture(int width, int height, bool opaque);

struct ComposeOptions {
    int orientation = 1; ///< of JPEG
    std::span<const std::uint8_t> profile{};
    int given = 2, stored = 2; ///< J_COLOR_SPACE; grey takes the red, inks all samples as 255 less the ink
    bool progressive = false, adobe = true;
};
/// What libpng writes for what `write` tells it.
FileBytes WrittenPng(const std::function<void(png_structp, png_infop)>& write);
/// Lossless, with opacity.
FileBytes ComposePng(const RgbaPicture& picture, const ComposeOptions& options);
/// Without loss to speak of; opacity is left out.
FileBytes ComposeJpeg(const RgbaPicture& picture, const ComposeOptions& options);
/// A file of tests/codecs/pictures, with an orientation put into its EXIF block or its directory. They show
/// the smooth picture of 37 x 21 pixels: "p3", "told" and the JPEG kinds the opaque one.
FileBytes KeptPicture(const std::string& name, int orientation = 0);

/// What the decoder of still pictures gives, pixel by pixel.
void ExpectPicture(PixelValue matte, std::span<const std::uint8_t> file, int width, int height, int bits,
                   const std::function<Rgb(int x, int y)>& wantedAt);

} // namespace lumafold::test
