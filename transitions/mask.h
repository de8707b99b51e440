// A mask: one byte a pixel, 255 where one picture shows, 0 where the other does. Effects draw, blur and blend
// through it without ever spreading it over three channels.
#pragma once

#include "image/dib_format.h"
#include "platform/allocation.h"

namespace lumafold {

/// Rows from the top, without padding. Check it before use: a new mask is empty when memory is short, else
/// all 0.
class Mask {
public:
    Mask() = default;
    /// Empty, too, where a side is below 1 or a 24-bit picture could not be as large.
    Mask(std::int64_t width, std::int64_t height) {
        if (width < 1 || height < 1 || !DibBlockBytes(width, height, 24)) return;
        width_ = static_cast<std::int32_t>(width);
        height_ = static_cast<std::int32_t>(height);
        pixels_ = Array<std::uint8_t>(static_cast<std::size_t>(width * height));
    }
    explicit operator bool() const { return static_cast<bool>(pixels_); }

    std::int32_t Width() const { return width_; }
    std::int32_t Height() const { return height_; }
    /// The pixels of row y and all rows below it.
    std::uint8_t* Row(std::int32_t y) { return pixels_.data() + std::ptrdiff_t{y} * width_; }
    const std::uint8_t* Row(std::int32_t y) const { return pixels_.data() + std::ptrdiff_t{y} * width_; }

private:
    std::int32_t width_ = 0, height_ = 0;
    Array<std::uint8_t> pixels_;
};

} // namespace lumafold
