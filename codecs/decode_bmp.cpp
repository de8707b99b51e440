#include <vector>

#include "codecs/decode_common.h"
#include "image/masked_channel.h"

namespace lumafold {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;

enum class Packing : std::uint32_t { None = 0, Rle8 = 1, Rle4 = 2, BitFields = 3, AlphaBitFields = 6 };

/// Little-endian numbers of the file; reading beyond its end is the file's fault.
class BmpBytes {
public:
    explicit BmpBytes(std::span<const std::uint8_t> file) : file_(file) {}

    std::span<const std::uint8_t> Piece(std::size_t offset, std::size_t length) const {
        if (offset > file_.size() || file_.size() - offset < length) throw DecodeError{kEndsTooEarly};
        return file_.subspan(offset, length);
    }
    std::uint32_t U16(std::size_t offset) const {
        const auto at = Piece(offset, 2);
        return static_cast<std::uint32_t>(at[0] | at[1] << 8);
    }
    std::uint32_t U32(std::size_t offset) const { return U16(offset) | U16(offset + 2) << 16; }
    std::size_t Size() const { return file_.size(); }

private:
    std::span<const std::uint8_t> file_;
};

struct BmpShape {
    std::uint32_t width = 0, height = 0;
    bool topDown = false;
    int bits = 0;
    Packing packing = Packing::None;
    std::array<std::uint32_t, 4> masks{}; ///< red, green, blue, alpha; for 16 and 32 bits
    std::size_t tableOffset = 0, tableEntryBytes = 4, tableEntries = 0;
    std::size_t pixelsOffset = 0;
};

void ReadMasks(const BmpBytes& file, std::size_t headerBytes, BmpShape& shape) {
    if (shape.packing == Packing::None) {
        // The fourth byte of plain 32-bit pixels means nothing, whatever it holds.
        if (shape.bits == 16) shape.masks = {0x7C00, 0x03E0, 0x001F, 0};
        if (shape.bits == 32) shape.masks = {0xFF0000, 0xFF00, 0xFF, 0};
        return;
    }
    if (shape.packing != Packing::BitFields && shape.packing != Packing::AlphaBitFields) return;
    // In the header, or right behind the old one: the offset is the same.
    const bool hasAlpha = headerBytes >= 56 || shape.packing == Packing::AlphaBitFields;
    for (std::size_t i = 0; i < (hasAlpha ? 4U : 3U); ++i) {
        shape.masks[i] = file.U32(kFileHeaderBytes + 40 + 4 * i);
    }
    if (headerBytes == 40) shape.tableOffset += hasAlpha ? 16 : 12;
}

void CheckKind(std::uint32_t bits, std::uint32_t packing, const BmpShape& shape) {
    const bool plain =
        bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    bool known = false;
    switch (static_cast<Packing>(packing)) {
    case Packing::None:
        known = plain;
        break;
    case Packing::Rle8:
        known = bits == 8 && !shape.topDown;
        break;
    case Packing::Rle4:
        known = bits == 4 && !shape.topDown;
        break;
    case Packing::BitFields:
    case Packing::AlphaBitFields:
        known = bits == 16 || bits == 32;
        break;
    }
    if (!known) {
        throw DecodeError{"BMP pixels of " + std::to_string(bits) + " bits with compression " +
                          std::to_string(packing) + " are not supported"};
    }
}

void ReadColourTablePlace(const BmpBytes& file, std::size_t headerBytes, BmpShape& shape) {
    shape.pixelsOffset = file.U32(10);
    if (shape.bits <= 8) {
        const std::size_t most = std::size_t{1} << shape.bits;
        const std::uint32_t told = headerBytes >= 36 ? file.U32(kFileHeaderBytes + 32) : 0;
        shape.tableEntries = told == 0 ? most : std::min<std::size_t>(told, most);
        // A table cut short by the pixels has only what lies before them.
        if (shape.pixelsOffset > shape.tableOffset) {
            const std::size_t room = (shape.pixelsOffset - shape.tableOffset) / shape.tableEntryBytes;
            shape.tableEntries = std::min(shape.tableEntries, room);
        }
    }
    const std::size_t tableEnd = shape.tableOffset + shape.tableEntries * shape.tableEntryBytes;
    if (shape.pixelsOffset < shape.tableOffset) shape.pixelsOffset = tableEnd;
}

BmpShape ReadShape(const BmpBytes& file, const DecodeLimits& limits) {
    BmpShape shape;
    const std::size_t headerBytes = file.U32(kFileHeaderBytes);
    if (headerBytes != 12 && (headerBytes < 16 || headerBytes > 124)) {
        throw DecodeError{"the BMP header is of an unknown kind"};
    }
    file.Piece(kFileHeaderBytes, headerBytes);
    shape.tableOffset = kFileHeaderBytes + headerBytes;
    std::uint32_t bits = 0, packing = 0;
    if (headerBytes == 12) {
        shape.width = file.U16(18);
        shape.height = file.U16(20);
        bits = file.U16(24);
        shape.tableEntryBytes = 3;
    } else {
        shape.width = file.U32(18);
        shape.height = file.U32(22);
        shape.topDown = (shape.height & 0x80000000U) != 0;
        if (shape.topDown) shape.height = 0U - shape.height;
        bits = file.U16(28);
        packing = headerBytes >= 20 ? file.U32(30) : 0;
    }
    CheckSize(shape.width, shape.height, limits);
    // A 64-byte header numbers its compressions differently from 3 on.
    if ((headerBytes < 40 || headerBytes == 64) && packing > 2) packing += 100;
    CheckKind(bits, packing, shape);
    shape.bits = static_cast<int>(bits);
    shape.packing = static_cast<Packing>(packing);
    ReadMasks(file, headerBytes, shape);
    ReadColourTablePlace(file, headerBytes, shape);
    return shape;
}

Palette ReadPalette(const BmpBytes& file, const BmpShape& shape) {
    Palette palette{};
    for (std::size_t i = 0; i < shape.tableEntries; ++i) {
        const auto entry = file.Piece(shape.tableOffset + i * shape.tableEntryBytes, 3);
        palette[i] = {entry[2], entry[1], entry[0]};
    }
    return palette;
}

std::uint32_t MaskedPixel(const std::uint8_t* row, std::size_t x, int bits) {
    if (bits == 16) return static_cast<std::uint32_t>(row[2 * x] | row[2 * x + 1] << 8);
    row += 4 * x;
    return static_cast<std::uint32_t>(row[0] | row[1] << 8 | row[2] << 16) |
           static_cast<std::uint32_t>(row[3]) << 24;
}

/// Rows of uncompressed pixels in the file, asked for top-down.
class StoredRows {
public:
    StoredRows(const BmpBytes& file, const BmpShape& shape)
        : shape_(shape),
          stride_(static_cast<std::size_t>(DibStride(static_cast<std::int32_t>(shape.width), shape.bits))) {
        // The padding of the last row is missing in some files, and is not needed.
        const std::size_t lastRow = (static_cast<std::size_t>(shape.bits) * shape.width + 7) / 8;
        rows_ = file.Piece(shape.pixelsOffset, stride_ * (std::size_t{shape.height} - 1) + lastRow).data();
    }
    const std::uint8_t* Row(std::uint32_t y) const {
        return rows_ + stride_ * (shape_.topDown ? y : shape_.height - 1 - y);
    }

private:
    const BmpShape& shape_;
    std::size_t stride_;
    const std::uint8_t* rows_;
};

/// Pixels that are all fully transparent come from writers that leave the alpha byte zero: it means nothing
/// then.
bool AlphaCounts(const StoredRows& rows, const BmpShape& shape) {
    if (shape.masks[3] == 0) return false;
    for (std::uint32_t y = 0; y < shape.height; ++y) {
        for (std::uint32_t x = 0; x < shape.width; ++x) {
            if ((MaskedPixel(rows.Row(y), x, shape.bits) & shape.masks[3]) != 0) return true;
        }
    }
    return false;
}

void ConvertMasked(const StoredRows& rows, const BmpShape& shape, PixelValue matte, PictureBuilder& picture) {
    const MaskedChannel red(shape.masks[0]), green(shape.masks[1]), blue(shape.masks[2]),
        alpha(shape.masks[3]);
    const bool alphaCounts = AlphaCounts(rows, shape);
    for (std::uint32_t y = 0; y < shape.height; ++y) {
        std::uint8_t* out = picture.Row(static_cast<std::int32_t>(y));
        for (std::uint32_t x = 0; x < shape.width; ++x, out += 3) {
            const std::uint32_t pixel = MaskedPixel(rows.Row(y), x, shape.bits);
            Rgb colour{red.Of(pixel), green.Of(pixel), blue.Of(pixel)};
            if (alphaCounts) colour = LayOver(colour, alpha.Of(pixel), matte);
            StoreColour(out, colour);
        }
    }
}

void ConvertIndexed(const StoredRows& rows, const BmpShape& shape, PictureBuilder& picture) {
    const auto bits = static_cast<std::size_t>(shape.bits);
    const std::size_t perByte = 8 / bits;
    std::vector<std::uint8_t> indexes(shape.width);
    for (std::uint32_t y = 0; y < shape.height; ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::size_t x = 0; x < shape.width; ++x) {
            const std::size_t shift = bits * (perByte - 1 - x % perByte);
            indexes[x] = static_cast<std::uint8_t>(row[x / perByte] >> shift & ((1U << bits) - 1));
        }
        picture.PutIndexes(static_cast<std::int32_t>(y), indexes.data());
    }
}

void ConvertPlain(const BmpBytes& file, const BmpShape& shape, PixelValue matte, PictureBuilder& picture) {
    const StoredRows rows(file, shape);
    if (shape.bits <= 8) return ConvertIndexed(rows, shape, picture);
    if (shape.bits != 24) return ConvertMasked(rows, shape, matte, picture);
    for (std::uint32_t y = 0; y < shape.height; ++y) {
        std::memcpy(picture.Row(static_cast<std::int32_t>(y)), rows.Row(y), std::size_t{3} * shape.width);
    }
}

/// Run-length codes: pairs of bytes, from the bottom row up. Pixels that are skipped keep index 0; what runs
/// over a row's end is dropped.
class RleDecoder {
public:
    RleDecoder(const BmpBytes& file, const BmpShape& shape)
        : file_(file), shape_(shape), at_(shape.pixelsOffset),
          indexes_(std::size_t{shape.width} * shape.height) {}

    void Decode() {
        while (y_ < shape_.height) {
            // The mark that ends the picture is sometimes left out: what counts is that no pixel is missing.
            if (at_ == file_.Size() && y_ == shape_.height - 1 && x_ >= shape_.width) return;
            const auto code = file_.Piece(at_, 2);
            at_ += 2;
            if (code[0] != 0) {
                Run(code[0], code[1]);
            } else if (code[1] == 1) {
                return;
            } else {
                Escape(code[1]);
            }
        }
    }

    /// Row y of the picture, top-down.
    const std::uint8_t* Row(std::uint32_t y) const {
        return indexes_.data() + std::size_t{shape_.width} * (shape_.height - 1 - y);
    }

private:
    void Put(unsigned index) {
        if (x_ < shape_.width)
            indexes_[static_cast<std::size_t>(shape_.width * y_ + x_)] = static_cast<std::uint8_t>(index);
        ++x_;
    }
    void Run(unsigned length, unsigned value) {
        for (unsigned i = 0; i < length; ++i) {
            Put(shape_.bits == 8 ? value : i % 2 == 0 ? value >> 4 : value & 15);
        }
    }
    void Escape(unsigned code) {
        if (code == 0) {
            x_ = 0;
            ++y_;
        } else if (code == 2) {
            const auto move = file_.Piece(at_, 2);
            at_ += 2;
            x_ += move[0];
            y_ += move[1];
        } else {
            Literal(code);
        }
    }
    void Literal(unsigned length) {
        const std::size_t bytes = shape_.bits == 8 ? length : (length + 1) / 2;
        const auto values = file_.Piece(at_, bytes);
        // Padded to an even number of bytes, though not always at the file's end.
        at_ = std::min(at_ + (bytes + 1) / 2 * 2, file_.Size());
        for (unsigned i = 0; i < length; ++i) {
            Put(shape_.bits == 8 ? values[i] : i % 2 == 0 ? values[i / 2] >> 4 : values[i / 2] & 15U);
        }
    }

    const BmpBytes& file_;
    const BmpShape& shape_;
    std::size_t at_;
    std::vector<std::uint8_t> indexes_;
    std::uint64_t x_ = 0, y_ = 0;
};

} // namespace

OwnedDib DecodeBmp(std::span<const std::uint8_t> bytes, const DecodeLimits& limits) {
    const BmpBytes file(bytes);
    const BmpShape shape = ReadShape(file, limits);
    const Palette palette = ReadPalette(file, shape);
    PictureBuilder picture(shape.width, shape.height, palette, shape.bits <= 8 ? shape.bits : 24);
    if (shape.packing == Packing::Rle8 || shape.packing == Packing::Rle4) {
        RleDecoder decoder(file, shape);
        decoder.Decode();
        for (std::uint32_t y = 0; y < shape.height; ++y) {
            picture.PutIndexes(static_cast<std::int32_t>(y), decoder.Row(y));
        }
    } else {
        ConvertPlain(file, shape, limits.matte, picture);
    }
    return picture.Finish();
}

} // namespace lumafold
