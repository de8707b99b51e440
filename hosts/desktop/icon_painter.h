// Small pictures of plain shapes with smooth edges, for buttons.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

struct IconPoint {
    double x, y;
};

/// Coordinates are pixels from the upper left corner; colours are 0x00RRGGBB.
class IconPainter {
public:
    IconPainter(int size, std::uint32_t background);

    void Polygon(std::span<const IconPoint> points, std::uint32_t colour);
    void Polygon(std::initializer_list<IconPoint> points, std::uint32_t colour) {
        Polygon(std::span(points.begin(), points.size()), colour);
    }
    void Box(double left, double top, double right, double bottom, std::uint32_t colour);
    void Disc(double x, double y, double radius, std::uint32_t colour);
    /// A line with flat ends.
    void Line(IconPoint from, IconPoint to, double width, std::uint32_t colour);

    const std::vector<std::uint32_t>& Pixels() const { return pixels_; }

private:
    template <typename Inside>
    void Fill(Inside inside, std::uint32_t colour);

    int size_;
    std::vector<std::uint32_t> pixels_;
};

} // namespace lumafold
