#include "tools/samples/paint.h"

#include <array>
#include <cmath>

namespace lumafold::samples {
namespace {

constexpr int kSamplesPerAxis = 3;

constexpr int kDirections = 64;

// Noise is asked for hundreds of times a pixel, so its slopes come from a table.
const std::array<Point, kDirections> kDirection = [] {
    std::array<Point, kDirections> table{};
    for (int i = 0; i < kDirections; ++i) {
        const double angle = i * 6.283185307179586 / kDirections;
        table[static_cast<std::size_t>(i)] = {std::cos(angle), std::sin(angle)};
    }
    return table;
}();

double Corner(int x, int y, unsigned seed, double dx, double dy) {
    const Point slope = kDirection[static_cast<std::size_t>(Random(x, y, seed) * kDirections)];
    return slope.x * dx + slope.y * dy;
}

double Ease(double t) { return t * t * t * (t * (t * 6 - 15) + 10); }

unsigned Level(double value) { return static_cast<unsigned>(std::lround(Clamp01(value) * 255)); }

Colour AverageAround(const Scene& scene, std::int32_t x, std::int32_t y, double scale) {
    Colour sum;
    for (int j = 0; j < kSamplesPerAxis; ++j) {
        for (int i = 0; i < kSamplesPerAxis; ++i) {
            const Colour colour =
                scene({(x + (i + 0.5) / kSamplesPerAxis) * scale, (y + (j + 0.5) / kSamplesPerAxis) * scale});
            // Clipped before it is averaged: otherwise edges against bright light come out jagged.
            sum = sum + Colour{Clamp01(colour.red), Clamp01(colour.green), Clamp01(colour.blue)};
        }
    }
    return sum * (1.0 / (kSamplesPerAxis * kSamplesPerAxis));
}

double Vignette(double x, double y) {
    const double dx = x / kAspect - 0.5, dy = y - 0.5;
    return 1 - 0.38 * Smooth(0.12, 0.62, dx * dx + dy * dy);
}

} // namespace

double Clamp01(double value) { return value < 0 ? 0 : value > 1 ? 1 : value; }
double Mix(double a, double b, double t) { return a + (b - a) * t; }
Colour Mix(Colour a, Colour b, double t) { return a * (1 - t) + b * t; }

double Smooth(double low, double high, double value) {
    const double t = Clamp01((value - low) / (high - low));
    return t * t * (3 - 2 * t);
}

Colour Lighten(Colour base, Colour light) {
    const auto screen = [](double a, double b) { return 1 - (1 - Clamp01(a)) * std::exp(-b); };
    return {screen(base.red, light.red), screen(base.green, light.green), screen(base.blue, light.blue)};
}

Colour Gradient(std::initializer_list<Stop> stops, double at) {
    const Stop* before = stops.begin();
    for (const Stop& stop : stops) {
        if (at < stop.at) {
            const double span = stop.at - before->at;
            return span > 0 ? Mix(before->colour, stop.colour, (at - before->at) / span) : stop.colour;
        }
        before = &stop;
    }
    return before->colour;
}

double Random(int x, int y, unsigned seed) {
    std::uint32_t h = seed * 0x9E3779B9u + static_cast<std::uint32_t>(x) * 0x85EBCA6Bu +
                      static_cast<std::uint32_t>(y) * 0xC2B2AE35u;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return (h ^ h >> 15) / 4294967296.0;
}

double Noise(double x, double y, unsigned seed) {
    const double left = std::floor(x), top = std::floor(y);
    const double dx = x - left, dy = y - top;
    const int i = static_cast<int>(left), j = static_cast<int>(top);
    const double above = Mix(Corner(i, j, seed, dx, dy), Corner(i + 1, j, seed, dx - 1, dy), Ease(dx));
    const double below =
        Mix(Corner(i, j + 1, seed, dx, dy - 1), Corner(i + 1, j + 1, seed, dx - 1, dy - 1), Ease(dx));
    return 1.5 * Mix(above, below, Ease(dy));
}

double Clouds(double x, double y, int octaves, unsigned seed) {
    double sum = 0, weight = 0.5;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * Noise(x, y, seed + static_cast<unsigned>(octave));
        // Turned a little, or the lattices would show through one another.
        const double turned = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = turned;
        weight /= 2;
    }
    return sum;
}

bool Inside(Point point, std::span<const Point> outline) {
    bool inside = false;
    for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const Point a = outline[i], b = outline[j];
        if ((a.y > point.y) != (b.y > point.y) &&
            point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

OwnedDib Paint(const Scene& scene, std::int32_t width, std::int32_t height) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    if (!dib) return {};
    const double scale = kAspect / width;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const Colour colour = AverageAround(scene, x, y, scale) * Vignette(x * scale, y * scale);
            // One grain for all three channels: film has no coloured speckles, and it breaks up bands in the
            // sky.
            const double grain = (Random(x, y, 901) + Random(x, y, 902) - 1) * 0.010;
            DibSetPixel(dib.Get(), x, y,
                        MakeColour(Level(colour.red + grain), Level(colour.green + grain),
                                   Level(colour.blue + grain)));
        }
    }
    return picture;
}

} // namespace lumafold::samples
