#include "hosts/desktop/icon_painter.h"

#include <cmath>

namespace lumafold {
namespace {

constexpr int kSamples = 6; ///< a pixel, each way

std::uint32_t Mix(std::uint32_t below, std::uint32_t above, std::uint32_t share, std::uint32_t whole) {
    std::uint32_t mixed = 0;
    for (const int shift : {0, 8, 16}) {
        const std::uint32_t under = below >> shift & 0xFF, over = above >> shift & 0xFF;
        mixed |= (under * (whole - share) + over * share + whole / 2) / whole << shift;
    }
    return mixed;
}

bool IsInside(std::span<const IconPoint> points, double x, double y) {
    bool inside = false;
    for (std::size_t i = 0, before = points.size() - 1; i < points.size(); before = i++) {
        const IconPoint a = points[i], b = points[before];
        if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    }
    return inside;
}

} // namespace

IconPainter::IconPainter(int size, std::uint32_t background)
    : size_(size), pixels_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), background) {}

template <typename Inside>
void IconPainter::Fill(Inside inside, std::uint32_t colour) {
    for (int at = 0; at < size_ * size_; ++at) {
        const int left = at % size_, top = at / size_;
        std::uint32_t covered = 0;
        for (int sample = 0; sample < kSamples * kSamples; ++sample) {
            const int column = sample % kSamples, row = sample / kSamples;
            const double x = left + (column + 0.5) / kSamples;
            const double y = top + (row + 0.5) / kSamples;
            covered += inside(x, y) ? 1 : 0;
        }
        std::uint32_t& pixel = pixels_[static_cast<std::size_t>(at)];
        if (covered > 0) pixel = Mix(pixel, colour, covered, kSamples * kSamples);
    }
}

void IconPainter::Polygon(std::span<const IconPoint> points, std::uint32_t colour) {
    if (points.size() < 3) return;
    Fill([&](double x, double y) { return IsInside(points, x, y); }, colour);
}

void IconPainter::Box(double left, double top, double right, double bottom, std::uint32_t colour) {
    Fill([&](double x, double y) { return x >= left && x < right && y >= top && y < bottom; }, colour);
}

void IconPainter::Disc(double x, double y, double radius, std::uint32_t colour) {
    Fill([&](double px, double py) { return std::hypot(px - x, py - y) < radius; }, colour);
}

void IconPainter::Line(IconPoint from, IconPoint to, double width, std::uint32_t colour) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (length == 0) return;
    const double x = (to.y - from.y) / length * width / 2, y = (from.x - to.x) / length * width / 2;
    Polygon({{from.x + x, from.y + y}, {to.x + x, to.y + y}, {to.x - x, to.y - y}, {from.x - x, from.y - y}},
            colour);
}

} // namespace lumafold
