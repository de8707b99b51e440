#include "image/dib.h"

#include "image/row_view.h"

namespace lumafold {
namespace {

constexpr std::uint8_t kBitMasks[8] = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};

const std::uint8_t* RowAddress(const DibHeader* dib, std::int32_t y) {
    return reinterpret_cast<const std::uint8_t*>(dib) + DibRowsOffset(*dib) +
           DibStride(dib->biWidth, dib->biBitCount) * static_cast<std::size_t>(dib->biHeight - 1 - y);
}

bool Inside(const DibHeader* dib, std::int32_t x, std::int32_t y) {
    return x >= 0 && x < dib->biWidth && y >= 0 && y < dib->biHeight;
}

/// The part of `length` positions from `first` on in both pictures: what clipping leaves of one axis.
struct Span {
    std::int64_t from, to; // offsets, `to` not included
};
Span Clip(std::int32_t length, std::int32_t target, std::int32_t targetSize, std::int32_t source,
          std::int32_t sourceSize) {
    const std::int64_t from = std::max({std::int64_t{0}, -std::int64_t{target}, -std::int64_t{source}});
    const std::int64_t to = std::min(
        {std::int64_t{length}, std::int64_t{targetSize} - target, std::int64_t{sourceSize} - source});
    return {from, to};
}

} // namespace

std::int32_t RectWidth(const Rect* rect) { return rect->right - rect->left; }
std::int32_t RectHeight(const Rect* rect) { return rect->bottom - rect->top; }

int DibRoundBitDepth(int bits) {
    if (bits == 1) return 1;
    if (bits >= 2 && bits <= 4) return 4;
    if (bits >= 5 && bits <= 8) return 8;
    if (bits >= 9 && bits <= 24) return 24;
    return 32;
}

DibHandle DibCreate(std::int32_t width, std::int32_t height, const Palette* palette, int bits) {
    bits = DibRoundBitDepth(bits);
    // At 32 bits the shift count wraps to 0 as on the processor: one table entry is reserved and never used.
    const auto colours = static_cast<std::uint16_t>(1U << (bits % 32));
    if (width < 0 || height < 0) return 0;
    constexpr std::uint64_t kMostBytes = 0x7FFFFFFF;
    const std::uint64_t stride =
        (static_cast<std::uint64_t>(bits) * static_cast<std::uint32_t>(width) + 31) / 32 * 4;
    if (height != 0 && stride > kMostBytes / static_cast<std::uint32_t>(height)) return 0;
    const std::uint64_t imageBytes = stride * static_cast<std::uint32_t>(height);
    const std::uint64_t bytes = sizeof(DibHeader) + colours * std::uint64_t{4} + imageBytes;
    if (bytes > kMostBytes) return 0;

    OwnedDib dib(GlobalCreate(GlobalKind::MovableShared, static_cast<std::size_t>(bytes)));
    if (!dib) return 0;
    {
        const LockedDib header(dib.Get());
        if (!header) return 0;
        *header.Get() = {sizeof(DibHeader),
                         width,
                         height,
                         1,
                         static_cast<std::uint16_t>(bits),
                         0,
                         static_cast<std::uint32_t>(imageBytes),
                         0,
                         0,
                         colours,
                         colours};
        // At 32 bits the one entry lands on the first stored pixel: wanted, as hosts have always been given
        // it.
        if (palette != nullptr) {
            auto* table = reinterpret_cast<std::uint8_t*>(header.Get()) + sizeof(DibHeader);
            for (std::size_t i = 0; i < colours; ++i, table += 4) {
                table[0] = (*palette)[i].blue;
                table[1] = (*palette)[i].green;
                table[2] = (*palette)[i].red;
            }
        }
    }
    return dib.Release();
}

int DibGetPalette(const DibHeader* dib, Palette& palette) {
    palette = {};
    if (dib->biBitCount > 8) return 0;
    const int colours = std::min(1 << dib->biBitCount, 256);
    const auto* table = reinterpret_cast<const std::uint8_t*>(dib) + sizeof(DibHeader);
    for (int i = 0; i < colours; ++i, table += 4) {
        palette[static_cast<std::size_t>(i)] = {table[2], table[1], table[0]};
    }
    return colours;
}

bool DibQuery(DibHandle dib, std::int32_t* width, std::int32_t* height, int* bits, Palette* palette) {
    const LockedDib header(dib);
    if (!header) return false;
    if (width != nullptr) *width = header->biWidth;
    if (height != nullptr) *height = header->biHeight;
    if (bits != nullptr) *bits = header->biBitCount;
    if (palette != nullptr) DibGetPalette(header.Get(), *palette);
    return true;
}

PixelValue DibGetPixel(const DibHeader* dib, std::int32_t x, std::int32_t y) {
    if (!Inside(dib, x, y)) return kNoPixel;
    const std::uint8_t* row = RowAddress(dib, y);
    const auto column = static_cast<std::size_t>(x);
    switch (dib->biBitCount) {
    case 1:
        return (row[column / 8] & kBitMasks[column % 8]) != 0 ? 1 : 0;
    case 4:
        return column % 2 == 0 ? row[column / 2] >> 4 : row[column / 2] & 0x0F;
    case 8:
        return row[column];
    case 24:
        row += column * 3;
        return MakeColour(row[2], row[1], row[0]);
    case 32:
        row += column * 4;
        return MakeColour(row[2], row[1], row[0]) | static_cast<PixelValue>(row[3]) << 24;
    default:
        return kNoPixel;
    }
}

void DibSetPixel(DibHeader* dib, std::int32_t x, std::int32_t y, PixelValue value) {
    if (value == kNoPixel || !Inside(dib, x, y)) return;
    auto* row = const_cast<std::uint8_t*>(RowAddress(dib, y));
    const auto column = static_cast<std::size_t>(x);
    switch (dib->biBitCount) {
    case 1: {
        std::uint8_t& byte = row[column / 8];
        const std::uint8_t mask = kBitMasks[column % 8];
        byte = static_cast<std::uint8_t>(value != 0 ? byte | mask : byte & ~mask);
        break;
    }
    case 4: {
        std::uint8_t& byte = row[column / 2];
        byte = static_cast<std::uint8_t>(column % 2 == 0 ? (byte & 0x0F) | (value & 0x0F) << 4
                                                         : (byte & 0xF0) | (value & 0x0F));
        break;
    }
    case 8:
        row[column] = static_cast<std::uint8_t>(value);
        break;
    case 32:
        row[column * 4 + 3] = static_cast<std::uint8_t>(value >> 24);
        [[fallthrough]];
    case 24:
        row += column * (dib->biBitCount / 8U);
        row[0] = static_cast<std::uint8_t>(BlueOf(value));
        row[1] = static_cast<std::uint8_t>(GreenOf(value));
        row[2] = static_cast<std::uint8_t>(RedOf(value));
        break;
    default:
        break;
    }
}

void DibCopyRect(DibHeader* target, std::int32_t targetX, std::int32_t targetY, const DibHeader* source,
                 std::int32_t sourceX, std::int32_t sourceY, std::int32_t width, std::int32_t height) {
    const Span columns = Clip(width, targetX, target->biWidth, sourceX, source->biWidth);
    const Span rows = Clip(height, targetY, target->biHeight, sourceY, source->biHeight);
    if (columns.from >= columns.to || rows.from >= rows.to) return;
    const auto at = [](std::int32_t base, std::int64_t offset) {
        return static_cast<std::int32_t>(base + offset);
    };

    const int bits = target->biBitCount;
    // Whole rows in one piece; not at 32 bits, where a white pixel may read as none, and not within one
    // picture, where the order of the pixels shows.
    if (bits == source->biBitCount && (bits == 8 || bits == 24) && target != source) {
        const auto pixelBytes = static_cast<std::size_t>(bits / 8);
        const RowView to(target);
        const ConstRowView from(source);
        const std::size_t bytes = static_cast<std::size_t>(columns.to - columns.from) * pixelBytes;
        for (std::int64_t r = rows.from; r < rows.to; ++r) {
            std::memcpy(
                to.Row(at(targetY, r)) + static_cast<std::size_t>(targetX + columns.from) * pixelBytes,
                from.Row(at(sourceY, r)) + static_cast<std::size_t>(sourceX + columns.from) * pixelBytes,
                bytes);
        }
        return;
    }
    for (std::int64_t r = rows.from; r < rows.to; ++r) {
        for (std::int64_t c = columns.from; c < columns.to; ++c) {
            DibSetPixel(target, at(targetX, c), at(targetY, r),
                        DibGetPixel(source, at(sourceX, c), at(sourceY, r)));
        }
    }
}

void DibFill(DibHeader* dib, PixelValue colour) {
    const RowView rows(dib);
    if (rows.Bits() != 24 || rows.Width() < 1 || colour == kNoPixel) return;
    const auto bytes = static_cast<std::size_t>(rows.Width()) * 3;
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* row = rows.Row(y);
        if (y > 0) {
            std::memcpy(row, rows.Row(0), bytes);
            continue;
        }
        for (std::size_t i = 0; i < bytes; i += 3) {
            row[i] = static_cast<std::uint8_t>(BlueOf(colour));
            row[i + 1] = static_cast<std::uint8_t>(GreenOf(colour));
            row[i + 2] = static_cast<std::uint8_t>(RedOf(colour));
        }
    }
}

DibHandle DibCreateFlat(std::int32_t width, std::int32_t height, PixelValue colour) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib locked(picture.Get());
    if (!locked) return 0;
    DibFill(locked.Get(), colour);
    return picture.Release();
}

} // namespace lumafold
