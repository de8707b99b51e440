// What pictures made by programs are painted with: colours, blends, soft noise and outlines.
#pragma once

#include <initializer_list>
#include <span>

namespace lumafold::paint {

struct Point {
    double x, y;
};

/// Display values from 0 to 1, more for light that is yet to be shown.
struct Colour {
    double red = 0, green = 0, blue = 0;
};
constexpr Colour operator+(Colour a, Colour b) { return {a.red + b.red, a.green + b.green, a.blue + b.blue}; }
constexpr Colour operator*(Colour a, Colour b) { return {a.red * b.red, a.green * b.green, a.blue * b.blue}; }
constexpr Colour operator*(Colour a, double k) { return {a.red * k, a.green * k, a.blue * k}; }
/// 0xRRGGBB as on every colour chart.
constexpr Colour Tint(unsigned rgb) {
    return {(rgb >> 16 & 0xFF) / 255.0, (rgb >> 8 & 0xFF) / 255.0, (rgb & 0xFF) / 255.0};
}

double Clamp01(double value);
double Mix(double a, double b, double t);
Colour Mix(Colour a, Colour b, double t);
/// 0 up to `low`, 1 from `high` on, an S between; `low` may be the larger.
double Smooth(double low, double high, double value);
/// Light on top of what is there: brightens and never overflows.
Colour Lighten(Colour base, Colour light);

struct Stop {
    double at;
    Colour colour;
};
Colour Gradient(std::initializer_list<Stop> stops, double at);

/// 0 to 1, the same for the same arguments everywhere.
double Random(int x, int y, unsigned seed);
/// Smooth noise, -1 to 1, one bump per unit; Clouds adds octaves of it.
double Noise(double x, double y, unsigned seed);
double Clouds(double x, double y, int octaves, unsigned seed);
/// Noise that repeats after so many bumps in each direction.
double TiledNoise(double x, double y, int periodX, int periodY, unsigned seed);

bool Inside(Point point, std::span<const Point> outline);

} // namespace lumafold::paint
