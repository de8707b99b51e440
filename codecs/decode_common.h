// What the decoders of the single formats share: their failure, the limits they keep to, and the picture
// under construction. Inside this room only; callers see decode.h.
#pragma once

#include <cstdint>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "codecs/decode.h"
#include "image/dib.h"

namespace lumafold {

/// Why a file cannot be decoded, in one line without the file's name. Decoders throw it; DecodePicture
/// catches it.
struct DecodeError {
    std::string text;
};

/// A library's text, in which only printing ASCII is left.
std::string OneLine(const char* text);

inline constexpr const char* kEndsTooEarly = "the file ends too early";
inline constexpr const char* kEmptyFile = "the file is empty";

struct DecodeLimits {
    PixelValue matte;         ///< 0x00BBGGRR, behind whatever is transparent
    std::uint64_t mostPixels; ///< width x height
};

/// Throws for pictures without pixels and for those too large; called before anything of that size is
/// allocated.
void CheckSize(std::uint64_t width, std::uint64_t height, const DecodeLimits& limits);

/// A sample laid over the matte's, all of it on the scale 0 to `most` (255 or 65535) but `matte` and the
/// result, which are 0 to 255. Rounded once, so that 16 bits lose nothing on the way.
constexpr std::uint8_t LayOver(std::uint64_t sample, std::uint64_t alpha, std::uint64_t matte,
                               std::uint64_t most) {
    const std::uint64_t unit = most / 255;
    return static_cast<std::uint8_t>((sample * alpha + matte * unit * (most - alpha) + most * unit / 2) /
                                     (most * unit));
}

/// A table entry of opacity `alpha` (0 to 255) over the matte.
constexpr Rgb LayOver(Rgb colour, unsigned alpha, PixelValue matte) {
    return {LayOver(colour.red, alpha, RedOf(matte), 255), LayOver(colour.green, alpha, GreenOf(matte), 255),
            LayOver(colour.blue, alpha, BlueOf(matte), 255)};
}

/// A pixel of red, green, blue and opacity whose colours were multiplied by it, as it was before.
inline void Unmultiply(std::uint8_t* rgba) {
    const unsigned alpha = rgba[3];
    for (int c = 0; c < 3 && alpha != 0 && alpha != 255; ++c)
        rgba[c] = static_cast<std::uint8_t>(std::min(255U, (rgba[c] * 255U + alpha / 2) / alpha));
}

/// Pixels of red, green, blue and opacity, a byte each, laid over the matte.
void PutOverMatte(const std::uint8_t* rgba, std::size_t pixels, PixelValue matte, std::uint8_t* row);

/// 2^bits greys from black to white.
Palette GreyRamp(int bits);

/// What `make` gives, or why it threw.
template <typename Make>
DecodedPicture PictureOrError(Make make) {
    try {
        return {make(), ""};
    } catch (const DecodeError& failure) {
        return {OwnedDib(), failure.text};
    } catch (const std::bad_alloc&) {
        return {OwnedDib(), "there is not enough memory for the picture"};
    }
}

/// The picture being decoded, locked while this lives. Throws when there is no memory for it.
class PictureBuilder {
public:
    PictureBuilder(std::uint32_t width, std::uint32_t height, const Palette& palette, int bits);

    int Bits() const { return rows_.Bits(); }
    /// Stores one byte a pixel at the picture's depth (1, 4 or 8 bits); excess bits are dropped.
    void PutIndexes(std::int32_t y, const std::uint8_t* indexes);
    /// The pixels of a row as they are stored: blue, green, red at 24 bits.
    std::uint8_t* Row(std::int32_t y) { return rows_.Row(y); }
    /// Gives the picture away; the builder is spent.
    OwnedDib Finish() { return std::move(picture_); }

private:
    OwnedDib picture_;
    RowView rows_;
};

/// One format each. They throw DecodeError, and std::bad_alloc when memory runs out.
OwnedDib DecodePng(std::span<const std::uint8_t> file, const DecodeLimits& limits);
OwnedDib DecodeJpeg(std::span<const std::uint8_t> file, const DecodeLimits& limits);
OwnedDib DecodeGif(std::span<const std::uint8_t> file, const DecodeLimits& limits);
OwnedDib DecodeBmp(std::span<const std::uint8_t> file, const DecodeLimits& limits);
OwnedDib DecodeWebp(std::span<const std::uint8_t> file, const DecodeLimits& limits);
OwnedDib DecodeTiff(std::span<const std::uint8_t> file, const DecodeLimits& limits);
/// HEIC and AVIF.
OwnedDib DecodeHeif(std::span<const std::uint8_t> file, const DecodeLimits& limits);

/// A PNG picture as it is stored, with its alpha on top: 0xAABBGGRR, row by row. The limits' matte is not
/// used.
std::vector<PixelValue> DecodePngPixels(std::span<const std::uint8_t> file, const DecodeLimits& limits);

} // namespace lumafold
