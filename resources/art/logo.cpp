// A sheet of vellum in three folds that turns half round, which brings it back to where it was: white light
// falls through it from behind and leaves it in colours, on the sheet and on the ground.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "resources/art/art.h"

namespace lumafold::art {
namespace {

using namespace paint;

constexpr double kPi = 3.141592653589793;
constexpr int kPanels = 3;
constexpr double kHalfHeight = 0.78, kGround = -0.80;
constexpr double kEdge = 0.035;

struct Vector {
    double x, y, z;
};
constexpr Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Vector operator*(Vector a, double k) { return {a.x * k, a.y * k, a.z * k}; }
constexpr double Dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector Unit(Vector a) { return a * (1 / std::sqrt(Dot(a, a))); }

// Seen from above, y being up in space: a flat Z, the same after half a turn.
constexpr std::array<Point, kPanels + 1> kFolds = {
    {{-0.98, -0.30}, {-0.34, 0.40}, {0.34, -0.40}, {0.98, 0.30}}};

struct Panel {
    Vector from, along; ///< the foot of one upright edge, and the way to the other
    Vector normal;
    double length;
};
using Sheet = std::array<Panel, kPanels>;

Sheet TurnedSheet(double turn) {
    const double angle = turn * kPi, cosine = std::cos(angle), sine = std::sin(angle);
    std::array<Vector, kPanels + 1> feet{};
    for (std::size_t i = 0; i < feet.size(); ++i) {
        const Point p = kFolds[i];
        feet[i] = {p.x * cosine - p.y * sine, 0, p.x * sine + p.y * cosine};
    }
    Sheet sheet{};
    for (std::size_t i = 0; i < sheet.size(); ++i) {
        const Vector along = feet[i + 1] - feet[i];
        const double length = std::sqrt(Dot(along, along));
        sheet[i] = {feet[i], along * (1 / length), {-along.z / length, 0, along.x / length}, length};
    }
    return sheet;
}

struct Hit {
    double distance;
    double across, up; ///< 0 to the panel's length, and the height above the middle
    std::size_t panel;
};

std::optional<Hit> Meet(const Sheet& sheet, std::size_t panel, Vector eye, Vector ray) {
    const Panel& p = sheet[panel];
    const double facing = Dot(ray, p.normal);
    if (std::abs(facing) < 1e-9) return std::nullopt;
    const double distance = Dot(p.from - eye, p.normal) / facing;
    const Vector point = eye + ray * distance;
    const double across = Dot(point - p.from, p.along);
    if (distance <= 0 || across < 0 || across > p.length || std::abs(point.y) > kHalfHeight)
        return std::nullopt;
    return Hit{distance, across, point.y, panel};
}

/// Soft colours of the spectrum, once round from 0 to 1.
Colour Spectrum(double at) {
    return Gradient({{0.00, Tint(0xFF5C9A)},
                     {0.13, Tint(0xFF8F5E)},
                     {0.28, Tint(0xFFDD66)},
                     {0.42, Tint(0x6FE08A)},
                     {0.57, Tint(0x3FD6E6)},
                     {0.72, Tint(0x4A8CFF)},
                     {0.87, Tint(0x9A5CFF)},
                     {1.00, Tint(0xFF5C9A)}},
                    at - std::floor(at));
}

const Vector kLight = Unit({-0.55, 0.75, -0.62}); // towards the lamp: behind the sheet, high on the left

/// Which colour leaves the sheet there: by the slant of the light and the height, and it wanders up once a
/// round.
double Hue(const Panel& panel, double up, double turn) {
    const double slant = std::abs(Dot(panel.normal, kLight));
    return 0.50 * slant + 0.24 * up - turn;
}

Sample SheetAt(const Sheet& sheet, const Hit& hit, Vector ray, double turn) {
    const Panel& panel = sheet[hit.panel];
    const double facing = std::abs(Dot(panel.normal, ray)), slant = std::abs(Dot(panel.normal, kLight));
    const Colour hue = Spectrum(Hue(panel, hit.up, turn));
    const double through = 0.76 + 0.40 * slant;
    const double rim = std::pow(1 - facing, 3);
    // The gloss: where the sheet throws the lamp of the room back at the eye.
    const Vector outward = Dot(panel.normal, ray) < 0 ? panel.normal : panel.normal * -1;
    const Vector half = Unit(Unit({0.45, 0.55, 0.9}) - ray);
    const double gloss = std::pow(std::max(0.0, Dot(outward, half)), 24);
    Colour light =
        Mix(hue, Tint(0xFFFFFF), 0.04 + 0.22 * slant + 0.20 * rim) * (through * (0.90 + 0.20 * hit.up));
    light = light + Tint(0xE8F0FF) * (0.10 * rim + 0.55 * gloss);
    double cover = 0.70 + 0.20 * rim + 0.1 * gloss;

    const double side = std::min(hit.across, panel.length - hit.across);
    const double border = std::min(side, kHalfHeight - std::abs(hit.up));
    const double line = 1 - Smooth(0.4 * kEdge, 1.4 * kEdge, border);
    light = Mix(light, Mix(hue, Tint(0xFFFFFF), 0.75) * (0.75 + 0.25 * slant), 0.85 * line);
    cover = Mix(cover, 0.96, line);
    return {light * cover, cover};
}

/// The sheet along one ray, the nearest layer on top.
Sample LookThrough(const Sheet& sheet, Vector eye, Vector ray, double turn) {
    std::array<Hit, kPanels> hits{};
    std::size_t count = 0;
    for (std::size_t panel = 0; panel < kPanels; ++panel) {
        const auto hit = Meet(sheet, panel, eye, ray);
        if (!hit) continue;
        std::size_t place = count++;
        for (; place > 0 && hits[place - 1].distance > hit->distance; --place)
            hits[place] = hits[place - 1];
        hits[place] = *hit;
    }
    Sample sum{{}, 0};
    for (std::size_t i = 0; i < count; ++i) {
        const Sample look = SheetAt(sheet, hits[i], ray, turn);
        sum.light = sum.light + look.light * (1 - sum.cover);
        sum.cover += look.cover * (1 - sum.cover);
    }
    return sum;
}

/// Light on the ground: white where nothing stands in its way, coloured behind the sheet. The lamp is large,
/// so its edges are soft.
Colour GroundLight(const Sheet& sheet, Vector ground, double turn) {
    constexpr int kLamps = 5;
    Colour sum;
    for (int j = 0; j < kLamps; ++j) {
        for (int i = 0; i < kLamps; ++i) {
            const Vector lamp = Unit(kLight + Vector{0.07 * (i - 2), 0.07 * (j - 2), 0.05 * (i - j)});
            Colour light = Tint(0x8FA2E0) * 0.16;
            for (std::size_t panel = 0; panel < kPanels; ++panel) {
                const auto hit = Meet(sheet, panel, ground, lamp);
                if (!hit) continue;
                const double slant = std::abs(Dot(sheet[panel].normal, lamp));
                light = light + Spectrum(Hue(sheet[panel], hit->up, turn)) * (0.75 * slant);
            }
            sum = sum + light;
        }
    }
    return sum * (1.0 / (kLamps * kLamps));
}

/// A camera a little above the sheet that looks slightly down; `right` and `down` are in units of the
/// picture, which is 2 high.
struct View {
    Vector eye, ray;
};
View Look(double right, double down) {
    constexpr double kTilt = 0.36, kDistance = 5.4, kZoom = 4.55;
    const Vector eye = Vector{0, std::sin(kTilt), std::cos(kTilt)} * kDistance;
    const Vector forward = Unit(Vector{0, -0.06, 0} - eye), upward = {0, std::cos(kTilt), -std::sin(kTilt)};
    return {eye, Unit(forward * kZoom + Vector{1, 0, 0} * right + upward * -down)};
}

Colour Night(const Sheet& sheet, Point at, View view, double turn) {
    const double fromMiddle = std::sqrt(at.x * at.x + (at.y + 0.1) * (at.y + 0.1));
    Colour night =
        Gradient({{0.0, Tint(0x2C3768)}, {0.6, Tint(0x1C2348)}, {1.5, Tint(0x0C0F24)}}, fromMiddle);
    if (view.ray.y < -1e-6) {
        const Vector ground = view.eye + view.ray * ((kGround - view.eye.y) / view.ray.y);
        const double reach = std::sqrt(ground.x * ground.x + ground.z * ground.z);
        const double lit = 1 - Smooth(0.5, 2.6, reach);
        night = Lighten(night, GroundLight(sheet, ground, turn) * lit);
    }
    return night;
}

} // namespace

Surface LogoFrame(double turn) {
    const Sheet sheet = TurnedSheet(turn);
    Surface frame = Draw(kLogoWidth, kLogoHeight, 6, [&](Point pixel) {
        const Point at = {(pixel.x - kLogoWidth / 2.0) / (kLogoHeight / 2.0),
                          pixel.y / (kLogoHeight / 2.0) - 1};
        const View view = Look(at.x, at.y);
        const Sample front = LookThrough(sheet, view.eye, view.ray, turn);
        const Colour back = Night(sheet, at, view, turn);
        const Colour sum = front.light + back * (1 - front.cover);
        return Sample{{Clamp01(sum.red), Clamp01(sum.green), Clamp01(sum.blue)}, 1};
    });
    // Less than a level of grain, which stands still: without it the night would come in bands.
    for (std::size_t i = 0; i < frame.pixels.size(); ++i) {
        const auto grain = [i](unsigned seed) { return (Random(static_cast<int>(i), 0, seed) - 0.5) / 255; };
        frame.pixels[i].light = frame.pixels[i].light + Colour{grain(1), grain(2), grain(3)};
    }
    return frame;
}

Surface LogoIcon(int size) {
    constexpr double kIconTurn = 0.04, kLower = 0.1;
    const Sheet sheet = TurnedSheet(kIconTurn);
    return Draw(size, size, 8, [&](Point pixel) {
        const View view = Look(pixel.x / size * 2 - 1, pixel.y / size * 2 - 1 - kLower);
        return LookThrough(sheet, view.eye, view.ray, kIconTurn);
    });
}

} // namespace lumafold::art
