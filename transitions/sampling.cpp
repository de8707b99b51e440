#include "transitions/sampling.h"

namespace lumafold {

SamplePlane::SamplePlane(const DibHeader& picture, Border border)
    : width_(picture.biWidth), height_(picture.biHeight), stride_(static_cast<std::ptrdiff_t>(width_) + 2),
      pixels_((static_cast<std::size_t>(width_) + 2) * (static_cast<std::size_t>(height_) + 2)),
      origin_(pixels_.data() + (pixels_ ? stride_ + 1 : 0)) {
    if (!pixels_) return;
    CopyPixels(ConstRowView(picture));
    if (border == Border::Nearest) RepeatEdges();
}

void SamplePlane::CopyPixels(const ConstRowView& rows) {
    for (std::int32_t y = 0; y < height_; ++y) {
        const std::uint8_t* from = rows.Row(y);
        std::uint32_t* to = origin_ + stride_ * y;
        // Four bytes at once; the last pixel's fourth byte may lie beyond the picture.
        std::int32_t x = 0;
        for (; x < width_ - 1; ++x, from += 3) {
            std::uint32_t bytes;
            std::memcpy(&bytes, from, 4);
            to[x] = bytes & 0xFFFFFF;
        }
        std::memcpy(to + x, from, 3);
    }
}

void SamplePlane::RepeatEdges() {
    for (std::int32_t y = 0; y < height_; ++y) {
        std::uint32_t* row = origin_ + stride_ * y;
        row[-1] = row[0];
        row[width_] = row[width_ - 1];
    }
    const std::size_t bytes = static_cast<std::size_t>(stride_) * sizeof(std::uint32_t);
    std::uint32_t* first = origin_ - 1;
    std::memcpy(first - stride_, first, bytes);
    std::memcpy(first + stride_ * height_, first + stride_ * (height_ - 1), bytes);
}

WarpSampler::WarpSampler(const SamplePlane& plane, PixelValue matte)
    : plane_(plane), width_(plane.Width()),
      height_(plane.Height()), matte_{static_cast<double>(BlueOf(matte)), static_cast<double>(GreenOf(matte)),
                                      static_cast<double>(RedOf(matte))} {}

void WarpSampler::AddExactly(double u, double v, double* sums) const {
    const double coverage = std::clamp(std::min(u, width_ - u) + 1, 0.0, 1.0) *
                            std::clamp(std::min(v, height_ - v) + 1, 0.0, 1.0);
    if (!(coverage > 0)) {
        for (int c = 0; c < 3; ++c)
            sums[c] += matte_[c];
        return;
    }
    const double x = std::clamp(u - 0.5, 0.0, width_ - 1), y = std::clamp(v - 0.5, 0.0, height_ - 1);
    const auto column = static_cast<std::int32_t>(x), row = static_cast<std::int32_t>(y);
    const double fx = x - column, fy = y - row;
    const std::uint32_t* top = plane_.At(column, row);
    const std::uint32_t* bottom = top + plane_.Stride();
    for (int c = 0; c < 3; ++c) {
        const auto channel = [c](std::uint32_t pixel) {
            return static_cast<double>((pixel >> (8 * c)) & 0xFF);
        };
        const double upper = channel(top[0]) + (channel(top[1]) - channel(top[0])) * fx;
        const double lower = channel(bottom[0]) + (channel(bottom[1]) - channel(bottom[0])) * fx;
        const double colour = upper + (lower - upper) * fy;
        sums[c] += coverage * colour + (1 - coverage) * matte_[c];
    }
}

} // namespace lumafold
