#include "image/dib.h"

namespace lumafold {
namespace {

bool Inside(const DibHeader& dib, std::int64_t x, std::int64_t y) {
    return x >= 0 && x < dib.biWidth && y >= 0 && y < dib.biHeight;
}

/// The part of `length` positions from `first` on in both pictures: what clipping leaves of one axis.
struct Span {
    std::int64_t from, to; // offsets, `to` not included
};
Span Clip(std::int64_t length, std::int64_t target, std::int32_t targetSize, std::int64_t source,
          std::int32_t sourceSize) {
    return {std::max({std::int64_t{0}, -target, -source}),
            std::min({length, targetSize - target, sourceSize - source})};
}

} // namespace

OwnedDib DibCreate(std::int64_t width, std::int64_t height, const Palette* palette, int bits) {
    bits = DibRoundBitDepth(bits);
    const std::optional<std::size_t> bytes = DibBlockBytes(width, height, bits);
    if (!bytes) return {};
    OwnedDib dib(GlobalCreate(GlobalKind::MovableShared, *bytes));
    if (!dib) return dib;
    dib->biSize = sizeof(DibHeader);
    dib->biWidth = static_cast<std::int32_t>(width);
    dib->biHeight = static_cast<std::int32_t>(height);
    dib->biPlanes = 1;
    dib->biBitCount = static_cast<std::uint16_t>(bits);
    dib->biSizeImage =
        static_cast<std::uint32_t>(DibStride(width, bits) * static_cast<std::uint64_t>(height));
    dib->biClrUsed = dib->biClrImportant = DibTableEntries(bits);
    // At 32 bits the one entry lands on the first stored pixel, as hosts have always been given it.
    if (palette != nullptr) DibSetPalette(*dib, *palette);
    return dib;
}

void DibSetPalette(DibHeader& dib, const Palette& palette) {
    auto* table = reinterpret_cast<std::uint8_t*>(&dib) + sizeof(DibHeader);
    for (std::size_t i = 0; i < DibTableEntries(dib.biBitCount); ++i)
        StoreColour(table + 4 * i, palette[i]);
}

OwnedDib DibCreateFlat(std::int64_t width, std::int64_t height, PixelValue colour) {
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    if (picture) DibFill(*picture, colour);
    return picture;
}

OwnedDib DibCreateLike(const DibHeader& like, std::int64_t width, std::int64_t height) {
    Palette palette;
    DibGetPalette(like, palette);
    return DibCreate(width, height, &palette, like.biBitCount);
}

OwnedDib DibCopy(const DibHeader& source) {
    OwnedDib copy = DibCreateLike(source, source.biWidth, source.biHeight);
    if (!copy) return copy;
    const ConstRowView from(source);
    const RowView to = copy.Rows();
    // Into pages that are fresh from the system, one copy of them all takes longer than rows do.
    const auto stride = static_cast<std::size_t>(from.Stride());
    for (std::size_t i = 0; i < from.StoredBytes(); i += stride)
        std::memcpy(to.Stored() + i, from.Stored() + i, stride);
    return copy;
}

int DibGetPalette(const DibHeader& dib, Palette& palette) {
    palette = {};
    if (dib.biBitCount > 8) return 0;
    const int colours = std::min(1 << dib.biBitCount, 256);
    const auto* table = reinterpret_cast<const std::uint8_t*>(&dib) + sizeof(DibHeader);
    for (int i = 0; i < colours; ++i, table += 4)
        palette[static_cast<std::size_t>(i)] = LoadRgb(table);
    return colours;
}

bool DibQuery(DibHandle dib, std::int32_t* width, std::int32_t* height, int* bits, Palette* palette) {
    const ReadDib header(dib);
    if (!header) return false;
    if (width != nullptr) *width = header->biWidth;
    if (height != nullptr) *height = header->biHeight;
    if (bits != nullptr) *bits = header->biBitCount;
    if (palette != nullptr) DibGetPalette(*header, *palette);
    return true;
}

PixelValue DibGetPixel(const DibHeader& dib, std::int64_t x, std::int64_t y) {
    if (!Inside(dib, x, y)) return kNoPixel;
    const std::uint8_t* row = ConstRowView(dib).Row(y);
    const auto column = static_cast<std::size_t>(x);
    switch (dib.biBitCount) {
    case 1:
        return row[column / 8] >> (7 - column % 8) & 1;
    case 4:
        return column % 2 == 0 ? row[column / 2] >> 4 : row[column / 2] & 0x0F;
    case 8:
        return row[column];
    case 24:
        return LoadColour(row + column * 3);
    case 32:
        row += column * 4;
        return LoadColour(row) | static_cast<PixelValue>(row[3]) << 24;
    default:
        return kNoPixel;
    }
}

void DibSetPixel(DibHeader& dib, std::int64_t x, std::int64_t y, PixelValue value) {
    if (value == kNoPixel || !Inside(dib, x, y)) return;
    std::uint8_t* row = RowView(dib).Row(y);
    const auto column = static_cast<std::size_t>(x);
    switch (dib.biBitCount) {
    case 1: {
        std::uint8_t& byte = row[column / 8];
        const unsigned mask = 0x80U >> column % 8;
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
        StoreColour(row + column * (dib.biBitCount / 8U), value);
        break;
    default:
        break;
    }
}

void DibCopyRect(DibHeader& target, std::int64_t targetX, std::int64_t targetY, const DibHeader& source,
                 std::int64_t sourceX, std::int64_t sourceY, std::int64_t width, std::int64_t height) {
    const Span columns = Clip(width, targetX, target.biWidth, sourceX, source.biWidth);
    const Span rows = Clip(height, targetY, target.biHeight, sourceY, source.biHeight);
    if (columns.from >= columns.to || rows.from >= rows.to) return;
    const int bits = target.biBitCount;
    // Whole rows in one piece; not at 32 bits, where a white pixel may read as none, and not within one
    // picture, where the order of the pixels shows.
    if (bits == source.biBitCount && (bits == 8 || bits == 24) && &target != &source) {
        const auto pixelBytes = static_cast<std::size_t>(bits / 8);
        const RowView to(target);
        const ConstRowView from(source);
        const std::size_t bytes = static_cast<std::size_t>(columns.to - columns.from) * pixelBytes;
        for (std::int64_t r = rows.from; r < rows.to; ++r) {
            std::memcpy(to.Row(targetY + r) + static_cast<std::size_t>(targetX + columns.from) * pixelBytes,
                        from.Row(sourceY + r) + static_cast<std::size_t>(sourceX + columns.from) * pixelBytes,
                        bytes);
        }
        return;
    }
    for (std::int64_t r = rows.from; r < rows.to; ++r) {
        for (std::int64_t c = columns.from; c < columns.to; ++c) {
            DibSetPixel(target, targetX + c, targetY + r, DibGetPixel(source, sourceX + c, sourceY + r));
        }
    }
}

void DibFill(DibHeader& dib, PixelValue colour) {
    const RowView rows(dib);
    if (rows.Bits() != 24 || rows.Height() < 1 || colour == kNoPixel) return;
    StoreColours(rows.Row(0), static_cast<std::size_t>(rows.Width()), colour);
    for (std::int32_t y = 1; y < rows.Height(); ++y)
        std::memcpy(rows.Row(y), rows.Row(0), rows.RowBytes());
}

} // namespace lumafold
