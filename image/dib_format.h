// What a picture is made of: a packed device-independent bitmap of header, colour table of 2^bits entries up
// to 8 bits, and bottom-up rows padded to four bytes. Sizes, offsets and single pixels are told here alone.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

namespace lumafold {

#pragma pack(push, 1)
struct DibHeader {
    std::uint32_t biSize;
    std::int32_t biWidth;
    std::int32_t biHeight;
    std::uint16_t biPlanes;
    std::uint16_t biBitCount;
    std::uint32_t biCompression;
    std::uint32_t biSizeImage;
    std::int32_t biXPelsPerMeter;
    std::int32_t biYPelsPerMeter;
    std::uint32_t biClrUsed;
    std::uint32_t biClrImportant;
};
#pragma pack(pop)
static_assert(sizeof(DibHeader) == 40);

/// One palette entry in the order of every interface: red, green, blue.
struct Rgb {
    std::uint8_t red, green, blue;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};
/// 256 entries, 768 bytes, wherever a palette crosses an interface.
using Palette = std::array<Rgb, 256>;
static_assert(sizeof(Palette) == 768);

/// A pixel's value: a colour-table index up to 8 bits, 0x00BBGGRR at 24, the fourth byte on top at 32.
using PixelValue = std::uint32_t;
/// No pixel: read outside a picture, and never written.
inline constexpr PixelValue kNoPixel = 0xFFFFFFFF;

constexpr PixelValue MakeColour(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
constexpr unsigned RedOf(PixelValue colour) { return colour & 0xFF; }
constexpr unsigned GreenOf(PixelValue colour) { return (colour >> 8) & 0xFF; }
constexpr unsigned BlueOf(PixelValue colour) { return (colour >> 16) & 0xFF; }
constexpr Rgb RgbOf(PixelValue colour) {
    return {static_cast<std::uint8_t>(RedOf(colour)), static_cast<std::uint8_t>(GreenOf(colour)),
            static_cast<std::uint8_t>(BlueOf(colour))};
}

constexpr PixelValue ColourOf(Rgb colour) { return MakeColour(colour.red, colour.green, colour.blue); }

/// (30 R + 59 G + 11 B) / 100 with each product divided by itself, modulo 256: white is 254.
constexpr std::uint8_t Luminance(Rgb colour) {
    return static_cast<std::uint8_t>(colour.red * 30 / 100 + colour.green * 59 / 100 +
                                     colour.blue * 11 / 100);
}

/// A 24-bit pixel as rows hold it: blue, green, red.
inline PixelValue LoadColour(const std::uint8_t* pixel) { return MakeColour(pixel[2], pixel[1], pixel[0]); }
inline Rgb LoadRgb(const std::uint8_t* pixel) { return {pixel[2], pixel[1], pixel[0]}; }
inline void StoreColour(std::uint8_t* pixel, Rgb colour) {
    pixel[0] = colour.blue;
    pixel[1] = colour.green;
    pixel[2] = colour.red;
}
inline void StoreColour(std::uint8_t* pixel, PixelValue colour) { StoreColour(pixel, RgbOf(colour)); }
/// `count` pixels of one colour.
inline void StoreColours(std::uint8_t* pixels, std::size_t count, PixelValue colour) {
    for (std::size_t i = 0; i < count; ++i)
        StoreColour(pixels + 3 * i, colour);
}

struct Rect {
    std::int32_t left, top, right, bottom;
};
constexpr std::int32_t RectWidth(const Rect& rect) { return rect.right - rect.left; }
constexpr std::int32_t RectHeight(const Rect& rect) { return rect.bottom - rect.top; }

/// 1, 4, 8, 24 or 32: what a picture asked for with `bits` is made of.
constexpr int DibRoundBitDepth(int bits) {
    for (const int depth : {1, 4, 8, 24}) {
        if (bits >= 1 && bits <= depth) return depth;
    }
    return 32;
}

/// Entries that the table of a new picture has room for. At 32 bits the shift count wraps to 0, as on the
/// processor: one entry is reserved and never used.
constexpr std::uint16_t DibTableEntries(int bits) { return static_cast<std::uint16_t>(1U << (bits % 32)); }

/// Bytes of a stored row of `width` >= 0 pixels.
constexpr std::uint64_t DibStride(std::int64_t width, int bits) {
    return (static_cast<std::uint64_t>(bits) * static_cast<std::uint64_t>(width) + 31) / 32 * 4;
}
/// Where the rows begin behind the header.
constexpr std::size_t DibRowsOffset(const DibHeader& header) {
    return header.biSize + (header.biBitCount < 9 ? std::size_t{4} << header.biBitCount : 0);
}

/// No block of a picture is larger, so products of sizes inside one never overflow.
inline constexpr std::uint64_t kMostDibBytes = 0x7FFFFFFF;
/// The bytes of a new picture's block, `bits` being one of the depths above; none when a side is negative or
/// the block would be larger than a picture may be.
constexpr std::optional<std::size_t> DibBlockBytes(std::int64_t width, std::int64_t height, int bits) {
    if (width < 0 || height < 0 || width > INT32_MAX || height > INT32_MAX) return {};
    const std::uint64_t stride = DibStride(width, bits);
    if (height != 0 && stride > kMostDibBytes / static_cast<std::uint64_t>(height)) return {};
    const std::uint64_t bytes = sizeof(DibHeader) + std::uint64_t{4} * DibTableEntries(bits) +
                                stride * static_cast<std::uint64_t>(height);
    if (bytes > kMostDibBytes) return {};
    return static_cast<std::size_t>(bytes);
}

} // namespace lumafold
