// How remapping and dithering read and write pictures: rows of colours, whatever the source is made of, and
// rows of one index a byte, packed into what the target is made of.
#pragma once

#include "image/row_view.h"

namespace lumafold {

/// Whether a picture can be reduced to indices at all.
inline bool IsReducible(const DibHeader& dib) {
    return dib.biBitCount == 1 || dib.biBitCount == 4 || dib.biBitCount == 8 || dib.biBitCount == 24;
}

inline void UnpackRow(const std::uint8_t* row, int bits, std::int32_t width, std::uint8_t* indices) {
    const auto count = static_cast<std::size_t>(width);
    if (bits == 8) {
        std::copy_n(row, count, indices);
    } else if (bits == 4) {
        for (std::size_t x = 0; x < count; ++x) {
            indices[x] = static_cast<std::uint8_t>(x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0x0F);
        }
    } else {
        for (std::size_t x = 0; x < count; ++x)
            indices[x] = row[x / 8] >> (7 - x % 8) & 1;
    }
}

/// A picture of 1, 4, 8 or 24 bits seen as rows of colours. Check it before use: false when memory is short.
class ColourRows {
public:
    explicit ColourRows(const DibHeader* dib)
        : rows_(dib), colours_(static_cast<std::size_t>(rows_.Width())),
          indices_(rows_.Bits() == 24 ? 0 : static_cast<std::size_t>(rows_.Width())) {
        DibGetPalette(dib, palette_);
    }
    explicit operator bool() const { return colours_ && indices_; }

    /// Picture row y, valid until the next call.
    const Rgb* Row(std::int32_t y) {
        const std::uint8_t* row = rows_.Row(y);
        if (rows_.Bits() == 24) {
            for (Rgb& colour : colours_) {
                colour = {row[2], row[1], row[0]};
                row += 3;
            }
        } else {
            UnpackRow(row, rows_.Bits(), rows_.Width(), indices_.data());
            for (std::size_t x = 0; x < colours_.size(); ++x)
                colours_[x] = palette_[indices_[x]];
        }
        return colours_.data();
    }

private:
    ConstRowView rows_;
    Palette palette_;
    Array<Rgb> colours_;
    Array<std::uint8_t> indices_;
};

/// Writes the bytes the row's pixels lie in; what is left over of the last one is zero.
inline void PackRow(const std::uint8_t* indices, int bits, std::int32_t width, std::uint8_t* row) {
    const auto count = static_cast<std::size_t>(width);
    if (bits == 8) {
        std::copy_n(indices, count, row);
    } else if (bits == 4) {
        // An index that four bits cannot hold loses its upper ones, as in DibSetPixel.
        const auto pair = [&](std::size_t x, unsigned second) {
            row[x / 2] = static_cast<std::uint8_t>((indices[x] << 4 & 0xF0) | (second & 0x0F));
        };
        for (std::size_t x = 0; x + 1 < count; x += 2)
            pair(x, indices[x + 1]);
        if (count % 2 != 0) pair(count - 1, 0);
    } else {
        for (std::size_t x = 0; x < count; x += 8) {
            unsigned byte = 0;
            const std::size_t used = std::min<std::size_t>(count - x, 8);
            for (std::size_t i = 0; i < used; ++i)
                byte |= indices[x + i] != 0 ? 0x80U >> i : 0;
            row[x / 8] = static_cast<std::uint8_t>(byte);
        }
    }
}

/// Fills a new indexed picture row by row from the top: `indexRow`(y, indices) gives each row's indices.
/// False when memory is short.
template <typename IndexRow>
bool FillIndexed(DibHeader* picture, IndexRow indexRow) {
    const RowView rows(picture);
    const bool packs = rows.Bits() != 8;
    Array<std::uint8_t> indices(packs ? static_cast<std::size_t>(rows.Width()) : 0);
    if (!indices) return false;
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        indexRow(y, packs ? indices.data() : rows.Row(y));
        if (packs) PackRow(indices.data(), rows.Bits(), rows.Width(), rows.Row(y));
    }
    return true;
}

} // namespace lumafold
