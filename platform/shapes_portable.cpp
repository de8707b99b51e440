#include "platform/shapes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace lumafold {
namespace {

constexpr std::uint8_t kWhite = 255;

/// The pixels of one canvas, white paint only. Whatever lies outside is left out here, after its shape is
/// decided.
struct Surface {
    std::uint8_t* pixels;
    std::int64_t width, height;

    void Span(std::int64_t y, std::int64_t left, std::int64_t right) const {
        if (y < 0 || y >= height) return;
        left = std::max<std::int64_t>(left, 0);
        right = std::min(right, width);
        if (left >= right) return;
        std::memset(pixels + y * width + left, kWhite, static_cast<std::size_t>(right - left));
    }
    void Dot(std::int64_t x, std::int64_t y) const { Span(y, x, x + 1); }
};

/// distance * across / along for 0 <= distance < along: whole part and rest. No product needs more than 64
/// bits.
struct Share {
    std::int64_t whole, rest;
};
Share TakeShare(std::int64_t distance, std::int64_t across, std::int64_t along) {
    const std::uint64_t product = static_cast<std::uint64_t>(distance) * static_cast<std::uint64_t>(across);
    const auto divisor = static_cast<std::uint64_t>(along);
    return {static_cast<std::int64_t>(product / divisor), static_cast<std::int64_t>(product % divisor)};
}

/// Where an edge meets row y, rounded up. `y` lies from the upper end to just above the lower one.
std::int64_t Crossing(ShapePoint upper, ShapePoint lower, std::int64_t y) {
    const std::int64_t down = std::int64_t{lower.y} - upper.y;
    const std::int64_t right = std::int64_t{lower.x} - upper.x;
    const Share share = TakeShare(y - upper.y, std::abs(right), down);
    if (right < 0) return upper.x - share.whole;
    return upper.x + share.whole + (share.rest != 0 ? 1 : 0);
}

/// The even-odd interior.
void FillInterior(const Surface& surface, std::span<const ShapePoint> points) {
    const auto [top, bottom] = std::minmax_element(points.begin(), points.end(),
                                                   [](ShapePoint a, ShapePoint b) { return a.y < b.y; });
    const std::int64_t end = std::min<std::int64_t>(bottom->y, surface.height);
    for (std::int64_t y = std::max(top->y, 0); y < end; ++y) {
        std::int64_t crossings[ShapeCanvas::kMaxPoints];
        std::size_t count = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            ShapePoint upper = points[i];
            ShapePoint lower = points[i + 1 < points.size() ? i + 1 : 0];
            if (upper.y > lower.y) std::swap(upper, lower);
            if (y >= upper.y && y < lower.y) crossings[count++] = Crossing(upper, lower, y);
        }
        std::sort(crossings, crossings + count);
        for (std::size_t i = 0; i + 1 < count; i += 2)
            surface.Span(y, crossings[i], crossings[i + 1]);
    }
}

/// A line of the pen: one dot for each step along its longer axis, the last one left out.
void DrawLine(const Surface& surface, ShapePoint from, ShapePoint to) {
    const bool steep = std::abs(std::int64_t{to.y} - from.y) >= std::abs(std::int64_t{to.x} - from.x);
    const std::int64_t begin = steep ? from.y : from.x, end = steep ? to.y : to.x;
    const std::int64_t across = steep ? from.x : from.y, acrossTo = steep ? to.x : to.y;
    const std::int64_t along = std::abs(end - begin), width = std::abs(acrossTo - across);
    const std::int64_t first = std::max<std::int64_t>(end > begin ? begin : end + 1, 0);
    const std::int64_t last = std::min(end > begin ? end : begin + 1, steep ? surface.height : surface.width);
    for (std::int64_t at = first; at < last; ++at) {
        const Share share = TakeShare(std::abs(at - begin), width, along);
        // An exact half goes to the smaller coordinate, whichever way the line runs.
        const std::int64_t other = acrossTo > across
                                       ? across + share.whole + (share.rest * 2 > along ? 1 : 0)
                                       : across - share.whole - (share.rest * 2 >= along ? 1 : 0);
        steep ? surface.Dot(other, at) : surface.Dot(at, other);
    }
}

/// The terms of the outline's walk, wide enough for boxes up to a million pixels with 64 bits.
template <typename Wide>
void WalkEllipse(const Surface& surface, std::int64_t left, std::int64_t top, std::int64_t width,
                 std::int64_t height) {
    const Wide a = width - 1, b = height - 1;
    const std::int64_t odd = (height - 1) & 1;
    const Wide stepX = 8 * b * b, stepY = 8 * a * a;
    Wide dx = 4 * (1 - a) * b * b;
    Wide dy = 4 * (odd + 1) * a * a;
    Wide error = dx + dy + odd * a * a;
    std::int64_t x0 = left, x1 = left + width - 1;
    std::int64_t low = top + height / 2, high = low - odd;
    bool newRow = true;
    // Nothing of the shape is left once both rows have gone out of the canvas.
    while (x0 <= x1 && (low < surface.height || high >= 0)) {
        if (newRow) {
            surface.Span(low, x0, x1 + 1);
            surface.Span(high, x0, x1 + 1);
        }
        const Wide twice = 2 * error;
        newRow = twice <= dy;
        if (twice >= dx) {
            ++x0;
            --x1;
            dx += stepX;
            error += dx;
        }
        if (newRow) {
            ++low;
            --high;
            dy += stepY;
            error += dy;
        }
    }
}

} // namespace

ShapeCanvas::ShapeCanvas(WindowHandle, std::int32_t width, std::int32_t height, std::uint8_t* pixels)
    : usable_(true), width_(width), height_(height), pixels_(pixels) {}

ShapeCanvas::~ShapeCanvas() = default;

void ShapeCanvas::FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const Surface surface{pixels_, width_, height_};
    const std::int32_t end = std::min(bottom, height_);
    for (std::int32_t y = std::max(top, 0); y < end; ++y)
        surface.Span(y, left, right);
}

void ShapeCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const Surface surface{pixels_, width_, height_};
    const std::int64_t width = std::abs(std::int64_t{right} - left);
    const std::int64_t height = std::abs(std::int64_t{bottom} - top);
    if (width == 0 || height == 0 || (width == 1 && height == 1)) return;
    if (right < left) std::swap(left, right);
    if (bottom < top) std::swap(top, bottom);
    if (width <= 2 || height <= 2) return FillRect(left, top, right, bottom);
    constexpr std::int64_t kLargest = 1 << 20;
    if (width <= kLargest && height <= kLargest) {
        return WalkEllipse<std::int64_t>(surface, left, top, width, height);
    }
#ifdef __SIZEOF_INT128__
    WalkEllipse<__int128>(surface, left, top, width, height);
#endif
}

void ShapeCanvas::Polygon(std::span<const ShapePoint> points) {
    if (points.size() < 2 || points.size() > kMaxPoints) return;
    const Surface surface{pixels_, width_, height_};
    FillInterior(surface, points);
    for (std::size_t i = 0; i < points.size(); ++i)
        DrawLine(surface, points[i], points[i + 1 < points.size() ? i + 1 : 0]);
}

bool ShapeCanvas::Finish(std::int32_t, std::int32_t) { return usable_; }

} // namespace lumafold
