// Pictures in the kinds of files that other programs make, by the kinds' own libraries.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <png.h>

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
    bool lossless = true;
    int orientation = 1;
    std::span<const std::uint8_t> profile{};
    bool saysDisplayP3 = false; ///< AVIF: by number instead of a profile
    struct Jpeg {
        int given = 2,
            stored = 2; ///< J_COLOR_SPACE; grey takes the red, inks all four samples as 255 less the ink
        bool progressive = false, adobe = true;
    } jpeg{};
    struct Tiff {
        int compression = 1, bits = 8;
        bool tiled = false, grey = false;
    } tiff{};
};
/// What libpng writes for what `write` tells it.
FileBytes WrittenPng(const std::function<void(png_structp, png_infop)>& write);
/// Lossless, with opacity.
FileBytes ComposePng(const RgbaPicture& picture, const ComposeOptions& options);
/// Without loss to speak of; opacity is left out.
FileBytes ComposeJpeg(const RgbaPicture& picture, const ComposeOptions& options);
/// In builds that read the kinds.
FileBytes ComposeWebp(const RgbaPicture& picture, const ComposeOptions& options);
FileBytes ComposeTiff(const RgbaPicture& picture, const ComposeOptions& options);
enum class HeifKind { Heic, Avif };
FileBytes ComposeHeif(const RgbaPicture& picture, HeifKind kind, const ComposeOptions& options);

} // namespace lumafold::test
