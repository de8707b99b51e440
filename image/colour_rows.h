// A picture of any depth seen as rows of colours, for loops that ask for nothing else.
#pragma once

#include "image/dib.h"
#include "image/index_rows.h"

namespace lumafold {

/// For pictures of 1, 4, 8 or 24 bits. Check it before use: false when memory is short.
class ColourRows {
public:
    explicit ColourRows(const DibHeader& dib)
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
                colour = LoadRgb(row);
                row += 3;
            }
        } else {
            UnpackIndices(row, rows_.Bits(), indices_);
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

} // namespace lumafold
