// A bright morning at sea, where the boats are folded from paper.
#include <cmath>

#include "tools/samples/paint.h"

namespace lumafold::samples {
namespace {

constexpr double kHorizon = 0.47;
constexpr Point kSun = {1.22, 0.10};

Colour Sky(Point p) {
    Colour sky = Gradient(
        {{0.00, Tint(0x3C8FCB)}, {0.22, Tint(0x79BCE3)}, {0.40, Tint(0xC3E4F2)}, {kHorizon, Tint(0xF6F1E2)}},
        p.y);
    const double d = std::hypot(p.x - kSun.x, p.y - kSun.y);
    sky = Lighten(sky, Colour{1.0, 0.92, 0.70} * (0.9 * std::exp(-3.2 * d)));
    // Flat below and heaped above; where there is less cloud towards the sun, its light comes through.
    const double u = p.x * 2.1, v = p.y * 4.6 + 0.25;
    const double body =
        Clouds(u, v, 6, 310) + 0.22 * Smooth(0.10, 0.30, p.y) - 0.20 * Smooth(0.34, 0.46, p.y);
    const double sunward = Clouds(u + 0.12, v - 0.20, 5, 310) + 0.20 * Smooth(0.10, 0.30, p.y - 0.04);
    const double cover = Smooth(0.10, 0.34, body);
    const Colour lit = Mix(Tint(0xC4D3E2), Tint(0xFFFDF6), Clamp01(0.62 + 1.6 * (body - sunward)));
    return Mix(sky, lit, 0.92 * cover * Smooth(0.0, 0.05, kHorizon - p.y));
}

bool PaintLighthouse(Point p, Colour& colour) {
    constexpr Point kFoot = {0.215, kHorizon - 0.020};
    const double x = p.x - kFoot.x, y = kFoot.y - p.y;
    const double rock =
        0.024 * Smooth(0.13, 0.02, std::fabs(x - 0.012)) * (1 + 0.5 * Clouds(p.x * 30, 0.4, 4, 330));
    if (p.y < kHorizon && p.y > kHorizon - rock) {
        colour = Mix(Tint(0x8496A0), Tint(0x56707C), 0.5 + 0.9 * Clouds(p.x * 60, p.y * 60, 3, 331));
        return true;
    }
    const double half = Mix(0.0135, 0.0090, y / 0.11);
    const double shade = Mix(0.78, 1.04, Smooth(-half, half, x));
    if (y >= -0.004 && y < 0.110 && std::fabs(x) < half) {
        const bool band = static_cast<int>(std::floor(y / 0.022)) % 2 == 1;
        colour = (band ? Tint(0xDB5A4C) : Tint(0xFBF6EC)) * shade;
        return true;
    }
    if (y >= 0.110 && y < 0.114 && std::fabs(x) < 0.0125) return colour = Tint(0x4E5A66) * shade, true;
    if (y >= 0.114 && y < 0.130 && std::fabs(x) < 0.0068) return colour = Tint(0xFFE9A6) * shade, true;
    if (y >= 0.130 && y < 0.142 && std::fabs(x) < 0.0092 * (0.142 - y) / 0.012) {
        return colour = Tint(0xB8443C) * shade, true;
    }
    return false;
}

Colour Above(Point p) {
    Colour colour = Sky(p);
    const double isle =
        0.022 * Smooth(0.0, 0.5, Clouds(p.x * 2.3 + 1, 0.7, 5, 340) + 0.15) * Smooth(0.55, 0.9, p.x);
    if (p.y > kHorizon - isle)
        colour = Mix(Tint(0x9FBFCB), Tint(0xBBD4D8), Smooth(kHorizon - 0.02, kHorizon, p.y));
    PaintLighthouse(p, colour);
    return colour;
}

struct Wave {
    double height, slope;
};

// The swell in the plane of the sea, so that it crowds towards the horizon.
Wave WaveAt(Point p) {
    const double depth = p.y - kHorizon + 0.012;
    const double far = 0.11 / depth, across = (p.x - 0.75) * far;
    const double wind = 0.35 * across;
    const auto height = [&](double z) {
        return Clouds(across * 2.4 + 5, z * 6.2 + wind, 4, 350) +
               0.35 * Noise(across * 9, z * 21 + wind * 3, 356);
    };
    const double here = height(far);
    return {here, height(far + 0.02) - here};
}

Colour Sea(Point p) {
    const double depth = p.y - kHorizon;
    const Wave wave = WaveAt(p);
    Colour water = Gradient(
        {{0.00, Tint(0xB5DDE0)}, {0.05, Tint(0x7CC3D0)}, {0.18, Tint(0x3C9FB8)}, {0.53, Tint(0x0E6488)}},
        depth + 0.05 * wave.height);
    const double near = Smooth(0.0, 0.10, depth);
    Point seen = {p.x + 0.02 * wave.height * near, 2 * kHorizon - p.y + 0.25 * depth * wave.height};
    seen.y = std::min(seen.y, kHorizon - 0.001);
    water = Mix(water, Above(seen), Mix(0.55, 0.20, Smooth(0, 0.35, depth)));
    water = water * (1 + 0.9 * near * wave.slope);
    water = Lighten(water, Tint(0xBFEFEA) * (0.45 * near * Smooth(0.15, 0.55, wave.height)));
    // The sun's road: glitter where a wave tilts the right way.
    const double road = std::exp(-std::pow((p.x - kSun.x + 0.25 * depth) / (0.10 + 0.35 * depth), 2));
    const double fine = 1 / (0.25 + depth);
    const double glint = Smooth(0.16, 0.40, wave.slope + 0.20 * Noise(p.x * 34 * fine, p.y * 80 * fine, 360));
    return Lighten(water,
                   Tint(0xFFF6DA) * (1.5 * road * glint * Smooth(0.60, 0.25, depth) * Mix(0.6, 1.0, near)));
}

struct Boat {
    Point at;    // the middle of its water line
    double size; // half its length
    Colour paper;
    double tilt;
};
const Boat kBoats[] = {
    {{1.185, 0.548}, 0.060, Tint(0xF4C95D), 0.04},
    {{0.98, 0.635}, 0.125, Tint(0xEF7C66), -0.05},
    {{0.50, 0.800}, 0.245, Tint(0xFCF8EF), 0.035},
};

struct Facet {
    Point outline[4];
    double light;
};
// Back to front. The paper is one sheet; only how it lies to the sun tells its folds apart.
constexpr Facet kFacets[] = {
    {{{-1.00, -0.46}, {0.00, -0.16}, {0.00, 0.10}, {-0.62, 0.10}}, 0.66}, // far side, inside, left
    {{{1.00, -0.46}, {0.62, 0.10}, {0.00, 0.10}, {0.00, -0.16}}, 0.74},   // far side, inside, right
    {{{0.00, -1.02}, {0.00, 0.05}, {-0.50, 0.05}, {-0.50, -0.06}}, 0.80}, // sail, away from the sun
    {{{0.00, -1.02}, {0.50, -0.06}, {0.50, 0.05}, {0.00, 0.05}}, 1.02},   // sail, towards it
    {{{-1.00, -0.46}, {0.00, -0.04}, {0.00, 0.16}, {-0.60, 0.16}}, 0.87}, // near side, left
    {{{1.00, -0.46}, {0.60, 0.16}, {0.00, 0.16}, {0.00, -0.04}}, 0.98},   // near side, right
};

bool PaintBoat(Point p, const Boat& boat, Colour& colour) {
    const double dx = (p.x - boat.at.x) / boat.size, dy = (p.y - boat.at.y) / boat.size;
    const Point q = {dx * std::cos(boat.tilt) + dy * std::sin(boat.tilt),
                     dy * std::cos(boat.tilt) - dx * std::sin(boat.tilt)};
    if (std::fabs(q.x) > 1.05 || q.y < -1.1 || q.y > 0.2) return false;
    bool hit = false;
    for (const Facet& facet : kFacets) {
        if (!Inside(q, facet.outline)) continue;
        hit = true;
        // Creases fade out towards the edges; the sheet itself has a little tooth.
        const double crease = 1 + 0.05 * Smooth(0.06, 0.0, std::fabs(q.x)) * (facet.light > 0.9 ? 1 : -1);
        const double tooth = 1 + 0.015 * Noise(q.x * 60, q.y * 60, 370);
        const double fall = 1 - 0.10 * Smooth(-0.5, 0.16, q.y);
        colour = boat.paper * (facet.light * crease * tooth * fall);
        // Shade is lit by the sky and the sea.
        colour = Mix(colour, colour * Colour{0.86, 0.96, 1.10}, Smooth(0.98, 0.70, facet.light));
    }
    return hit;
}

Colour Morning(Point p) {
    if (p.y < kHorizon) {
        Colour colour = Above(p);
        for (const Boat& boat : kBoats)
            PaintBoat(p, boat, colour);
        return colour;
    }
    const Wave wave = WaveAt(p);
    Colour colour = Sea(p);
    for (const Boat& boat : kBoats) {
        const double line = boat.at.y + boat.size * 0.10 * (1 + 0.35 * wave.height);
        const double below = (p.y - line) / boat.size;
        if (below > 0) {
            const Point seen = {p.x + boat.size * 0.22 * wave.height * Clamp01(0.25 + below),
                                2 * line - p.y + boat.size * 0.30 * wave.slope};
            Colour mirrored;
            if (PaintBoat(seen, boat, mirrored)) {
                colour = Mix(colour, mirrored * Colour{0.72, 0.90, 0.95}, 0.62 * Smooth(1.15, 0.0, below));
            }
            const double dx = (p.x - boat.at.x) / boat.size;
            colour = colour * (1 - 0.40 * Smooth(0.14, 0.0, below) * Smooth(0.75, 0.45, std::fabs(dx)));
        } else {
            PaintBoat(p, boat, colour);
        }
    }
    return colour;
}

} // namespace

Scene PaperBoats() { return Morning; }

} // namespace lumafold::samples
