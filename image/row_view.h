// Rows of a picture, top-down, for loops over whole pictures. The view owns stride, bottom-up order and
// padding; the bytes it leads to are the ones DibGetPixel and DibSetPixel would touch.
#pragma once

#include "image/dib_format.h"

namespace lumafold {

template <typename Byte, typename Header>
class BasicRowView {
public:
    explicit BasicRowView(Header& dib)
        : width_(dib.biWidth), height_(dib.biHeight), bits_(dib.biBitCount),
          stride_(static_cast<std::ptrdiff_t>(DibStride(dib.biWidth, dib.biBitCount))),
          top_(reinterpret_cast<Byte*>(&dib) + DibRowsOffset(dib) +
               (height_ > 0 ? stride_ * (height_ - std::ptrdiff_t{1}) : 0)) {}

    std::int32_t Width() const { return width_; }
    std::int32_t Height() const { return height_; }
    int Bits() const { return bits_; }
    /// Bytes of a row without its padding, for whole-byte depths.
    std::size_t RowBytes() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(bits_) / 8;
    }
    /// Bytes from a stored row to the next; picture row y + 1 lies this much below row y in memory.
    std::ptrdiff_t Stride() const { return stride_; }
    /// The first byte of picture row y, 0 <= y < Height().
    Byte* Row(std::int64_t y) const { return top_ - stride_ * static_cast<std::ptrdiff_t>(y); }
    /// The rows as they are stored, for loops that need no order. Empty pictures have none.
    Byte* Stored() const { return height_ > 0 ? Row(height_ - 1) : nullptr; }
    std::size_t StoredBytes() const {
        return height_ > 0 ? static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_) : 0;
    }

private:
    std::int32_t width_, height_;
    int bits_;
    std::ptrdiff_t stride_;
    Byte* top_;
};

using RowView = BasicRowView<std::uint8_t, DibHeader>;
using ConstRowView = BasicRowView<const std::uint8_t, const DibHeader>;

/// Whether a picture is 24 bits deep and covers `width` x `height`, so that rows may stand for the accessors.
inline bool Covers24(const DibHeader& dib, std::int32_t width, std::int32_t height) {
    return dib.biBitCount == 24 && dib.biWidth >= width && dib.biHeight >= height;
}

} // namespace lumafold
