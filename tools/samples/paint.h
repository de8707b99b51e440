// What the sample pictures are painted with: colours, soft noise, outlines, and a renderer that asks a scene
// for the colour of a point and smooths the edges by asking often.
#pragma once

#include <functional>
#include <initializer_list>
#include <span>

#include "image/dib.h"

namespace lumafold::samples {

/// A picture is 1.5 wide and 1 high whatever its pixels are, y downwards.
struct Point {
    double x, y;
};
inline constexpr double kAspect = 1.5;

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

bool Inside(Point point, std::span<const Point> outline);

using Scene = std::function<Colour(Point)>;
/// A picture at 24 bits with a light vignette and the finest grain, or none when memory is short.
OwnedDib Paint(const Scene& scene, std::int32_t width, std::int32_t height);

Scene DawnOverMountains();
Scene LanternsOnNightWater();
Scene PaperBoats();

} // namespace lumafold::samples
