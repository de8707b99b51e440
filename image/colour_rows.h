// A picture of any depth seen as rows of true colour, for loops that ask for nothing else.
#pragma once

#include "image/dib.h"
#include "image/index_rows.h"

namespace lumafold {

/// Check it before use: false when memory is short.
class ColourRows {
public:
    explicit ColourRows(const DibHeader& dib)
        : rows_(dib), width_(rows_.Bits() > 8 ? 0 : static_cast<std::size_t>(rows_.Width())),
          indices_(width_), colours_(3 * width_) {
        DibGetPalette(dib, palette_);
    }
    explicit operator bool() const { return indices_ && colours_; }

    /// Picture row y, blue, green and red of each pixel, valid until the next call. Deeper than 8 bits it is
    /// the picture's own.
    const std::uint8_t* Row(std::int32_t y) {
        if (rows_.Bits() > 8) return rows_.Row(y);
        UnpackIndices(rows_.Row(y), rows_.Bits(), indices_);
        for (std::size_t x = 0; x < width_; ++x)
            StoreColour(colours_.data() + 3 * x, palette_[indices_[x]]);
        return colours_.data();
    }

private:
    ConstRowView rows_;
    std::size_t width_; ///< of what is unpacked
    Palette palette_;
    Array<std::uint8_t> indices_, colours_;
};

} // namespace lumafold
