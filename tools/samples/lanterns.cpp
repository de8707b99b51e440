// A still night: paper lanterns drift up from a lake and over it, and the water gives them back.
#include <cmath>

#include "tools/samples/paint.h"

namespace lumafold::samples {
namespace {

constexpr double kHorizon = 0.56;

struct Lantern {
    Point at;    // the middle of the body
    double size; // half its height
};
// From far to near, so that near ones come last and lie on top.
constexpr Lantern kAloft[] = {
    {{0.62, 0.455}, 0.009}, {{0.70, 0.430}, 0.010}, {{0.79, 0.462}, 0.009}, {{0.88, 0.408}, 0.012},
    {{0.53, 0.405}, 0.012}, {{0.97, 0.350}, 0.016}, {{0.74, 0.345}, 0.015}, {{0.43, 0.345}, 0.016},
    {{1.08, 0.430}, 0.014}, {{1.19, 0.300}, 0.022}, {{0.60, 0.265}, 0.022}, {{0.88, 0.215}, 0.027},
    {{0.29, 0.262}, 0.028}, {{1.33, 0.395}, 0.020}, {{1.37, 0.165}, 0.036}, {{0.45, 0.120}, 0.040},
    {{1.07, 0.105}, 0.050}, {{0.14, 0.150}, 0.056},
};

struct Float {
    double x, foot, size; // foot is the water line
};
constexpr Float kAfloat[] = {
    {0.78, 0.610, 0.018}, {0.60, 0.622, 0.021}, {0.99, 0.635, 0.025}, {0.42, 0.672, 0.034},
    {1.22, 0.700, 0.044}, {0.80, 0.760, 0.060}, {0.27, 0.835, 0.085},
};

Colour Sky(Point p) {
    Colour sky = Gradient(
        {{0.00, Tint(0x050B26)}, {0.30, Tint(0x0C1C4C)}, {0.47, Tint(0x1D3A72)}, {kHorizon, Tint(0x48568C)}},
        p.y);
    const double cloud = Clouds(p.x * 1.6, p.y * 4.5 + 2, 5, 210);
    sky = Lighten(sky, Tint(0x54689C) * (0.20 * Smooth(-0.05, 0.5, cloud)));
    const double cell = 0.021;
    const int i = static_cast<int>(std::floor(p.x / cell)), j = static_cast<int>(std::floor(p.y / cell));
    if (Random(i, j, 230) > 0.80) {
        const double dx = p.x - (i + 0.25 + 0.5 * Random(i, j, 231)) * cell;
        const double dy = p.y - (j + 0.25 + 0.5 * Random(i, j, 232)) * cell;
        const double bright = std::pow(Random(i, j, 233), 3) * Smooth(0.48, 0.25, p.y);
        sky = Lighten(sky, Tint(0xDCE4FF) * (1.5 * bright * std::exp(-(dx * dx + dy * dy) / 1.6e-6)));
    }
    return sky;
}

Colour Halo(Point p, Point at, double size) {
    const double d = std::hypot(p.x - at.x, p.y - at.y) / size;
    return Colour{1.0, 0.50, 0.16} * (0.60 * std::exp(-0.95 * d) + 0.030 * std::exp(-0.28 * d));
}

// The paper balloon: a dome over a body that narrows to the ring where its flame burns.
bool PaintAloft(Point p, const Lantern& lantern, Colour& colour) {
    const double x = (p.x - lantern.at.x) / lantern.size, y = (p.y - lantern.at.y) / lantern.size;
    if (y < -1 || y > 1) return false;
    const double half = y < -0.35 ? 0.74 * std::sqrt(Clamp01(1 - std::pow((-0.35 - y) / 0.65, 2)))
                                  : Mix(0.74, 0.50, Smooth(-0.35, 1, y));
    if (std::fabs(x) > half) return false;
    const double glow = std::exp(-1.1 * (x * x * 1.8 + (y - 0.75) * (y - 0.75)));
    const Colour paper = Gradient(
        {{0.0, Tint(0xA83A1A)}, {0.25, Tint(0xE0661F)}, {0.6, Tint(0xFFB24A)}, {1.0, Tint(0xFFF4C4)}}, glow);
    const double edge = 1 - 0.30 * std::pow(std::fabs(x) / half, 4);
    const double seam = 1 - 0.10 * Smooth(0.05, 0.0, std::fabs(std::fabs(x / half) - 0.42));
    colour = y > 0.93 ? Tint(0x7A3A18) : paper * (edge * seam);
    return true;
}

double ShoreTop(double x) {
    return kHorizon - 0.030 - 0.075 * Smooth(0.55, 0.0, x) - 0.10 * Smooth(0.95, 1.5, x) -
           0.035 * Clouds(x * 3 + 4, 0.3, 6, 240);
}

Colour Above(Point p) {
    Colour colour = Sky(p);
    if (p.y > ShoreTop(p.x)) {
        const double mist = Smooth(kHorizon - 0.07, kHorizon, p.y);
        colour = Mix(Tint(0x081026), Tint(0x22305C), 0.8 * mist);
        const double cell = 0.022;
        const int i = static_cast<int>(std::floor(p.x / cell));
        const Point house = {(i + 0.3 + 0.4 * Random(i, 0, 250)) * cell,
                             kHorizon - 0.006 - 0.018 * Random(i, 1, 250)};
        if (Random(i, 2, 250) > 0.60 && house.y > ShoreTop(house.x) + 0.008) {
            colour = Lighten(colour, Tint(0xFFC070) *
                                         (1.5 * std::exp(-std::hypot(p.x - house.x, p.y - house.y) * 520)));
        }
    }
    for (const Lantern& lantern : kAloft)
        colour = Lighten(colour, Halo(p, lantern.at, lantern.size * 1.7));
    for (const Lantern& lantern : kAloft)
        PaintAloft(p, lantern, colour);
    return colour;
}

// A paper box on a little raft, brightest where its candle stands.
bool PaintAfloat(Point p, const Float& lantern, Colour& colour) {
    const double x = (p.x - lantern.x) / lantern.size, y = (p.y - lantern.foot) / lantern.size;
    if (std::fabs(x) > 0.78 || y > 0 || y < -1.65) return false;
    if (y > -0.16) {
        colour = Mix(Tint(0x5A2E16), Tint(0x2A1610), std::fabs(x));
        return std::fabs(x) < 0.78 - 0.5 * (y + 0.16);
    }
    const double half = 0.60 + 0.05 * y + 0.02;
    if (std::fabs(x) > half) return false;
    const double glow = std::exp(-(2.0 * x * x + 0.95 * (y + 0.55) * (y + 0.55)));
    Colour paper = Gradient(
        {{0.0, Tint(0xC2471A)}, {0.35, Tint(0xF0842C)}, {0.7, Tint(0xFFC766)}, {1.0, Tint(0xFFF9DC)}}, glow);
    const bool frame = y < -1.55 || std::fabs(x) > half - 0.05 || std::fabs(x - 0.22) < 0.022;
    paper = paper * (1 + 0.05 * Noise(p.x * 300, p.y * 300, 260)) * (x > 0.22 ? 0.84 : 1.0);
    colour = frame ? paper * 0.62 : paper;
    return true;
}

// Ripples grow towards the viewer and shift what is mirrored, sideways a little and along the line of sight a
// lot.
Point Mirrored(Point p, double line, double strength) {
    const double depth = p.y - kHorizon + 0.02;
    const double row = std::log(depth) * 26;
    const double wave =
        Noise(p.x * 5 / (depth + 0.12), row, 270) + 0.5 * Noise(p.x * 12 / (depth + 0.12), row * 2.1, 271);
    return {p.x + 0.010 * strength * wave, 2 * line - p.y + 0.085 * strength * (p.y - line + 0.02) * wave};
}

Colour Water(Point p) {
    Colour sum;
    constexpr int kTaps = 3;
    for (int tap = 0; tap < kTaps; ++tap) {
        Point seen = Mirrored({p.x, p.y + 0.004 * (tap - 1)}, kHorizon, 1.0);
        seen.y = std::min(seen.y, kHorizon - 0.002);
        sum = sum + Above(seen);
    }
    const double depth = Smooth(kHorizon, 1.0, p.y);
    Colour water = sum * (1.0 / kTaps) * Mix(0.80, 0.42, depth) + Tint(0x0A1230) * (0.6 * depth);
    for (const Float& lantern : kAfloat) {
        const Point seen = Mirrored(p, lantern.foot, 1.2);
        const double below = (p.y - lantern.foot) / lantern.size;
        if (below < -0.3) continue;
        const Point flame = {lantern.x, lantern.foot - 0.7 * lantern.size};
        const double dx = (seen.x - flame.x) / lantern.size, dy = (seen.y - flame.y) / (2.6 * lantern.size);
        const double shine = 0.85 * Smooth(-0.3, 0.5, below) * std::exp(-1.25 * std::hypot(dx, dy));
        water = Lighten(water, Colour{1.0, 0.50, 0.15} * shine);
        Colour mirrored;
        if (PaintAfloat(seen, lantern, mirrored)) {
            water = Mix(water, mirrored * 0.80, 0.75 * Smooth(2.0, 0.2, below));
        }
    }
    return water;
}

Colour Night(Point p) {
    Colour colour = p.y < kHorizon ? Above(p) : Water(p);
    for (const Float& lantern : kAfloat) {
        const Point flame = {lantern.x, lantern.foot - 0.7 * lantern.size};
        colour = Lighten(colour, Halo(p, flame, lantern.size * 1.25) * 0.8);
        PaintAfloat(p, lantern, colour);
    }
    return colour;
}

} // namespace

Scene LanternsOnNightWater() { return Night; }

} // namespace lumafold::samples
