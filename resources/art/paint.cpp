#include "resources/art/paint.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace lumafold::paint {
namespace {

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

int Wrapped(int value, int period) { return (value % period + period) % period; }

/// Between the four corners of a lattice cell, at (dx, dy) in it.
double Blend(double dx, double dy, int left, int right, int top, int bottom, unsigned seed) {
    const double above = Mix(Corner(left, top, seed, dx, dy), Corner(right, top, seed, dx - 1, dy), Ease(dx));
    const double below =
        Mix(Corner(left, bottom, seed, dx, dy - 1), Corner(right, bottom, seed, dx - 1, dy - 1), Ease(dx));
    return 1.5 * Mix(above, below, Ease(dy));
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
    const int i = static_cast<int>(left), j = static_cast<int>(top);
    return Blend(x - left, y - top, i, i + 1, j, j + 1, seed);
}

double TiledNoise(double x, double y, int periodX, int periodY, unsigned seed) {
    const double left = std::floor(x), top = std::floor(y);
    const int i = Wrapped(static_cast<int>(left), periodX), j = Wrapped(static_cast<int>(top), periodY);
    return Blend(x - left, y - top, i, Wrapped(i + 1, periodX), j, Wrapped(j + 1, periodY), seed);
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

} // namespace lumafold::paint
