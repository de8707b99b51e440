#include "transitions/shape_masks.h"

#include <cmath>

namespace lumafold {
namespace {

/// The half-axes for `longer` along the longer side, in the canvas's proportions, shrunk to `percent`.
struct HalfAxes {
    std::int32_t x, y;
};
HalfAxes Proportional(std::int64_t width, std::int64_t height, std::int64_t longer, std::int64_t percent) {
    const bool wide = height < width;
    const std::int64_t x = wide ? longer : width * longer / height;
    const std::int64_t y = wide ? height * longer / width : longer;
    const std::int64_t p = std::min<std::int64_t>(percent, 100);
    return {static_cast<std::int32_t>(x * p / 100), static_cast<std::int32_t>(y * p / 100)};
}

/// `width` pixels from twice as many of each of two rows.
void HalveRow(const std::uint8_t* __restrict upper, const std::uint8_t* __restrict lower,
              std::uint8_t* __restrict out, std::int32_t width) {
    const auto average = [](unsigned a, unsigned b) { return (a + b) / 2; };
    for (std::int32_t x = 0; x < width; ++x) {
        out[x] = static_cast<std::uint8_t>(
            average(average(upper[2 * x], upper[2 * x + 1]), average(lower[2 * x], lower[2 * x + 1])));
    }
}

} // namespace

Mask Halved(const Mask& fine, const Rect& box) {
    Mask half(RectWidth(box), RectHeight(box));
    for (std::int32_t y = 0; half && y < half.Height(); ++y) {
        const std::uint8_t* upper = fine.Row(2 * (box.top + y)) + std::ptrdiff_t{2} * box.left;
        HalveRow(upper, upper + fine.Width(), half.Row(y), half.Width());
    }
    return half;
}

Mask EllipseMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent) {
    const std::int64_t w = std::int64_t{2} * width, h = std::int64_t{2} * height;
    return DrawHalvedMask(window, w, h, [=](ShapeCanvas& canvas) {
        const auto longer =
            static_cast<std::int64_t>(std::ceil(0.5 * std::sqrt(static_cast<double>(w * w + h * h))));
        const HalfAxes r = Proportional(w, h, longer, percent);
        canvas.Ellipse(width - r.x, height - r.y, width + r.x, height + r.y);
    });
}

Mask DiamondMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent) {
    const std::int64_t w = std::int64_t{2} * width, h = std::int64_t{2} * height;
    return DrawHalvedMask(window, w, h, [=](ShapeCanvas& canvas) {
        const HalfAxes r = Proportional(w, h, std::max(w, h), percent);
        const ShapePoint corners[] = {{width - r.x, height},
                                      {width, height - r.y},
                                      {width + r.x, height},
                                      {width, height + r.y},
                                      {width - r.x, height}};
        canvas.Polygon(corners);
    });
}

} // namespace lumafold
