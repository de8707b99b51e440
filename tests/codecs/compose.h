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
};
FileBytes ComposeJpeg(const RgbaPicture& picture, const ComposeOptions& options);
/// What libpng writes for what `write` tells it.
FileBytes WrittenPng(const std::function<void(png_structp, png_infop)>& write);
FileBytes ComposePng(const RgbaPicture& picture, const ComposeOptions& options);
#if LUMAFOLD_WEBP
FileBytes ComposeWebp(const RgbaPicture& picture, const ComposeOptions& options);
#endif
#if LUMAFOLD_TIFF
struct TiffOptions : ComposeOptions {
    int compression = 1, bits = 8;
    bool tiled = false, grey = false;
};
FileBytes ComposeTiff(const RgbaPicture& picture, const TiffOptions& options);
#endif
#if LUMAFOLD_HEIF
enum class HeifKind { Heic, Avif };
FileBytes ComposeHeif(const RgbaPicture& picture, HeifKind kind, const ComposeOptions& options);
#endif

} // namespace lumafold::test
