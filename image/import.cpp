#include "image/import.h"

#include <span>

#include "image/masked_channel.h"

namespace lumafold {
namespace {

constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kMasksOffset = 40; // inside the larger headers, right behind the smaller one
enum Compression : std::uint32_t { kRgb = 0, kBitFields = 3, kAlphaBitFields = 6 };

/// A host's block, of which nothing is believed. Offsets are checked by whoever reads.
struct ForeignBytes {
    std::span<const std::uint8_t> bytes;

    bool Holds(std::uint64_t count) const { return count <= bytes.size(); }
    const std::uint8_t* At(std::uint64_t offset) const {
        return bytes.data() + static_cast<std::size_t>(offset);
    }
    template <typename T>
    T Read(std::uint64_t offset) const {
        T value;
        std::memcpy(&value, At(offset), sizeof(value));
        return value;
    }
};

/// Where everything lies in a foreign picture.
struct ForeignShape {
    std::uint32_t headerBytes = 0;
    std::int64_t width = 0, height = 0;
    bool topDown = false;
    std::uint32_t bits = 0;
    std::uint32_t compression = kRgb;
    std::uint64_t tableOffset = 0, tableEntries = 0, tableEntryBytes = 4;
    std::uint64_t rowsOffset = 0, stride = 0;

    bool IsIndexed() const { return bits == 1 || bits == 4 || bits == 8; }
    bool IsDeep() const { return bits == 16 || bits == 32; }
    bool HasMasks() const { return compression != kRgb; }
    std::uint64_t WholeTable() const { return IsIndexed() ? std::uint64_t{1} << bits : 0; }
};

bool IsKnownHeader(std::uint32_t bytes) {
    constexpr std::uint32_t kKnown[] = {kCoreHeaderBytes, 40, 52, 56, 64, 108, 124};
    return std::find(std::begin(kKnown), std::end(kKnown), bytes) != std::end(kKnown);
}

bool IsKnownKind(const ForeignShape& shape) {
    if (shape.compression == kRgb) return shape.IsDeep() || shape.IsIndexed() || shape.bits == 24;
    // A 64-byte header numbers its compressions differently.
    return shape.IsDeep() && shape.headerBytes != 64 &&
           (shape.compression == kBitFields || shape.compression == kAlphaBitFields);
}

void ReadCoreHeader(const ForeignBytes& block, ForeignShape& shape) {
    shape.width = block.Read<std::uint16_t>(4);
    shape.height = block.Read<std::uint16_t>(6);
    shape.bits = block.Read<std::uint16_t>(10);
    shape.tableEntryBytes = 3;
    shape.tableEntries = shape.WholeTable();
}

void ReadInfoHeader(const ForeignBytes& block, ForeignShape& shape) {
    const auto header = block.Read<DibHeader>(0);
    shape.width = header.biWidth;
    shape.topDown = header.biHeight < 0;
    shape.height = shape.topDown ? -std::int64_t{header.biHeight} : header.biHeight;
    shape.bits = header.biBitCount;
    shape.compression = header.biCompression;
    shape.tableEntries = header.biClrUsed != 0 ? header.biClrUsed : shape.WholeTable();
    if (shape.headerBytes == kMasksOffset && shape.HasMasks()) {
        shape.tableOffset += shape.compression == kAlphaBitFields ? 16 : 12;
    }
}

/// Finds the rows. A whole table is believed in wherever the block has room for it, as this engine lays
/// pictures out whatever the count of used entries says; else the table that the count tells.
bool PlaceRows(const ForeignBytes& block, ForeignShape& shape) {
    // No size here is beyond 35 bits, so the products stay below 64.
    shape.stride = DibStride(shape.width, static_cast<int>(shape.bits));
    for (const std::uint64_t entries : {shape.WholeTable(), shape.tableEntries}) {
        shape.tableEntries = entries;
        shape.rowsOffset = shape.tableOffset + entries * shape.tableEntryBytes;
        if (block.Holds(shape.stride) && block.Holds(shape.rowsOffset) &&
            block.Holds(shape.rowsOffset + shape.stride * static_cast<std::uint64_t>(shape.height))) {
            return true;
        }
    }
    return false;
}

/// What the block says of itself; none when it is no picture of a known kind or lacks bytes of it.
std::optional<ForeignShape> ReadShape(const ForeignBytes& block) {
    ForeignShape shape;
    if (!block.Holds(kCoreHeaderBytes)) return {};
    shape.headerBytes = block.Read<std::uint32_t>(0);
    if (!IsKnownHeader(shape.headerBytes) || !block.Holds(shape.headerBytes)) return {};
    shape.tableOffset = shape.headerBytes;
    if (shape.headerBytes == kCoreHeaderBytes) {
        ReadCoreHeader(block, shape);
    } else {
        ReadInfoHeader(block, shape);
    }
    if (!IsKnownKind(shape) || shape.width <= 0 || shape.height <= 0) return {};
    return PlaceRows(block, shape) ? std::optional(shape) : std::nullopt;
}

/// Every build makes 24 bits of every picture, so one that is too large for that is of no use.
bool FitsTrueColour(const ForeignShape& shape) {
    constexpr std::int64_t kMostWidth = 1 << 26; // the bits of a row are counted in 32 bits at every depth
    return shape.width <= kMostWidth && DibBlockBytes(shape.width, shape.height, 24);
}

bool IsOurForm(const ForeignShape& shape) {
    return shape.headerBytes == sizeof(DibHeader) && !shape.topDown && !shape.IsDeep() &&
           shape.tableEntries == shape.WholeTable();
}

/// Entries that are missing are black; those beyond the depth name no pixel.
Palette ReadPalette(const ForeignBytes& block, const ForeignShape& shape) {
    Palette palette{};
    const std::uint64_t entries = std::min(shape.tableEntries, shape.WholeTable());
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint8_t* entry = block.At(shape.tableOffset + i * shape.tableEntryBytes);
        palette[static_cast<std::size_t>(i)] = LoadRgb(entry);
    }
    return palette;
}

/// Red, green or blue of pictures of 16 or 32 bits.
MaskedChannel ChannelOf(const ForeignBytes& block, const ForeignShape& shape, std::uint32_t number) {
    if (shape.HasMasks()) return MaskedChannel(block.Read<std::uint32_t>(kMasksOffset + 4 * number));
    return MaskedChannel(shape.bits == 16 ? 0x7C00U >> (5 * number) : 0xFF0000U >> (8 * number));
}

OwnedDib Convert(const ForeignBytes& block, const ForeignShape& shape) {
    const Palette palette = ReadPalette(block, shape);
    const auto width = static_cast<std::int32_t>(shape.width);
    const auto height = static_cast<std::int32_t>(shape.height);
    OwnedDib made = DibCreate(width, height, &palette, shape.IsIndexed() ? static_cast<int>(shape.bits) : 24);
    if (!made) return made;
    const RowView rows = made.Rows();
    const MaskedChannel red = ChannelOf(block, shape, 0), green = ChannelOf(block, shape, 1),
                        blue = ChannelOf(block, shape, 2);
    const std::size_t pixelBytes = shape.bits / 8;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::int32_t stored = shape.topDown ? y : height - 1 - y;
        const std::uint8_t* from =
            block.At(shape.rowsOffset + shape.stride * static_cast<std::uint64_t>(stored));
        std::uint8_t* to = rows.Row(y);
        if (!shape.IsDeep()) {
            std::memcpy(to, from, static_cast<std::size_t>(shape.stride));
            continue;
        }
        // What is left of a pixel beside its colours says nothing.
        for (std::int32_t x = 0; x < width; ++x, from += pixelBytes, to += 3) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, from, pixelBytes);
            StoreColour(to, Rgb{red.Of(pixel), green.Of(pixel), blue.Of(pixel)});
        }
    }
    return made;
}

} // namespace

OwnedDib DibImport(DibHandle foreign) {
    OwnedDib picture(foreign);
    if (!picture) return picture;
    const ForeignBytes block{{reinterpret_cast<const std::uint8_t*>(&*picture), GlobalBytes(picture.Get())}};
    const std::optional<ForeignShape> shape = ReadShape(block);
    if (!shape || !FitsTrueColour(*shape)) return {};
    if (IsOurForm(*shape)) return picture;
    return Convert(block, *shape);
}

} // namespace lumafold
