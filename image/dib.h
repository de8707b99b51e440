// The picture: a packed device-independent bitmap in one movable block. Header, colour table of 2^bits
// entries up to 8 bits, then bottom-up rows padded to four bytes. Picture coordinates are top-down.
// DibGetPixel and DibSetPixel define every result; whole-picture loops over 24-bit pixels go through
// image/row_view.h.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "platform/global_memory.h"

namespace lumafold {

using DibHandle = GlobalHandle;
using OwnedDib = OwnedGlobal;

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

using LockedDib = GlobalLocked<DibHeader>;

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

struct Rect {
    std::int32_t left, top, right, bottom;
};
std::int32_t RectWidth(const Rect* rect);
std::int32_t RectHeight(const Rect* rect);

/// 1, 4, 8, 24 or 32: what a picture asked for with `bits` is made of.
int DibRoundBitDepth(int bits);

/// Bytes of a stored row, and where the rows begin behind the header.
constexpr std::size_t DibStride(std::int32_t width, int bits) {
    return (static_cast<std::size_t>(bits) * static_cast<std::size_t>(width) + 31) / 32 * 4;
}
constexpr std::size_t DibRowsOffset(const DibHeader& header) {
    return header.biSize + (header.biBitCount < 9 ? std::size_t{4} << header.biBitCount : 0);
}

/// A new picture of all-zero pixels, or 0: out of memory, a negative side, or more bytes than a block can
/// have (every product of sizes in the engine is safe because it is checked here). `palette` null leaves the
/// table black.
DibHandle DibCreate(std::int32_t width, std::int32_t height, const Palette* palette, int bits);

/// Fills all 256 entries, those beyond the table with zero. The number of colours, 0 above 8 bits.
int DibGetPalette(const DibHeader* dib, Palette& palette);

/// What a picture is, any part of it null when not asked for; false when it cannot be locked.
bool DibQuery(DibHandle dib, std::int32_t* width, std::int32_t* height, int* bits, Palette* palette);

PixelValue DibGetPixel(const DibHeader* dib, std::int32_t x, std::int32_t y);
void DibSetPixel(DibHeader* dib, std::int32_t x, std::int32_t y, PixelValue value);

/// Copies raw values pixel by pixel, clipped by the accessors' own rule; depths and palettes are expected to
/// agree.
void DibCopyRect(DibHeader* target, std::int32_t targetX, std::int32_t targetY, const DibHeader* source,
                 std::int32_t sourceX, std::int32_t sourceY, std::int32_t width, std::int32_t height);

/// Sets every pixel of a 24-bit picture; kNoPixel sets none.
void DibFill(DibHeader* dib, PixelValue colour);

/// A new 24-bit picture of one colour, or 0.
DibHandle DibCreateFlat(std::int32_t width, std::int32_t height, PixelValue colour);

} // namespace lumafold
