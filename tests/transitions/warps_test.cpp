#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr const char *kBurp = "Burp", *kHurricane = "Hurricane", *kSingularity = "Quantum singularity";

double Swell(double part, double whole) { return PortableSin(kPi * part / whole); }

PlainPoint PlainImplode(bool burps, int p, int w, int h, int x, int y) {
    const auto& s = pluginSettings;
    const double travel = 0.6 * (p - 50), gravity = s.TransitionImplodeMax / 100.0;
    const double cx = (s.TransitionImplodeXPos + (s.TransitionImplodeTrack == 1 ? travel : 0)) * w / 100;
    const double cy = (s.TransitionImplodeYPos + (s.TransitionImplodeTrack == 2 ? travel : 0)) * h / 100;
    const double burp = p < 75 ? Swell(p, 75) : Swell(p - 75, 25) / 3;
    const double a = burps ? gravity * burp : 2 * gravity * Swell(p, 100);
    const double right = x + 0.5 - cx, down = y + 0.5 - cy;
    const double dx = right / std::max(cx, w - cx), dy = down / std::max(cy, h - cy);
    const double d = std::sqrt(dx * dx + dy * dy);
    if (d >= 1 || d == 0) return {x + 0.5, y + 0.5};
    const double weight = a * (1 - d * d) * (1 - d * d);
    const double sampled = std::pow(d, burps ? 1 + weight : 1 / (1 + weight));
    return {cx + right * sampled / d, cy + down * sampled / d};
}

/// Frame i mixes the pictures by its percentage and takes each pixel from `points(p, x, y)`.
template <typename Points>
void ExpectBent(const char* name, unsigned step, Points points) {
    pluginSettings.TransitionMattcolour = 0x2040C0;
    for (const CanvasSize size : kOddSizes) {
        ExpectFrames(name, size, [&](int i, const DibHeader* from, const DibHeader* to) {
            const int p = i * static_cast<int>(step);
            const OwnedDib mix(DibCrossfade(from, to, p * 255 / 100));
            const LockedDib locked(mix.Get());
            return Picture(size.width, size.height, [&](int x, int y) {
                return PlainSample(locked.Get(), points(p, size.width, size.height, x, y), 0x2040C0);
            });
        });
    }
}

TEST(Implode, IsItsPlainDefinition) {
    const SettingsGuard guard;
    struct Case {
        const char* name;
        unsigned step, gravity, track, atX, atY;
    };
    for (const Case& c : {Case{kBurp, 5, 150, 1, 50, 50},
                          {kBurp, 13, 250, 2, 30, 70},
                          {kSingularity, 5, 150, 1, 50, 50},
                          {kSingularity, 17, 250, 0, 66, 31},
                          {kSingularity, 1, 10, 2, 70, 70},
                          {kBurp, 25, 90, 3, 200, 0}}) {
        pluginSettings.TransitionImplodeStep = c.step;
        pluginSettings.TransitionImplodeMax = c.gravity;
        pluginSettings.TransitionImplodeTrack = c.track;
        pluginSettings.TransitionImplodeXPos = c.atX;
        pluginSettings.TransitionImplodeYPos = c.atY;
        ExpectBent(c.name, c.step, [&](int p, int w, int h, int x, int y) {
            return std::vector{PlainImplode(c.name == kBurp, p, w, h, x, y)};
        });
    }
}

std::vector<PlainPoint> PlainHurricane(int p, int w, int h, int x, int y) {
    const double angle = pluginSettings.TransitionMotionBlurAngle * (kPi / 180) * Swell(p, 100);
    const double radius = pluginSettings.TransitionMotionBlurRadius / 10.0 * Swell(p, 100);
    const int samples = std::max(1, static_cast<int>(std::ceil(2 * radius))) + 1;
    const double right = x + 0.5 - w / 2.0, down = y + 0.5 - h / 2.0;
    const double nx = right / (w / 2.0), ny = down / (h / 2.0), square = nx * nx + ny * ny;
    const double turn = square < 1 ? angle * (1 - square) * (1 - square) : 0;
    const double rho = std::sqrt(right * right + down * down);
    std::vector<PlainPoint> points;
    for (int j = 0; j < samples; ++j) {
        const double offset = -radius + 2 * radius * j / (samples - 1);
        const double t = turn + (radius > 0 ? offset / std::max(rho, radius) : 0);
        const double c = PortableCos(t), s = PortableSin(t);
        points.push_back({w / 2.0 + (c * nx + s * ny) * (w / 2.0), h / 2.0 + (c * ny - s * nx) * (h / 2.0)});
    }
    return points;
}

TEST(Hurricane, IsItsPlainDefinition) {
    const SettingsGuard guard;
    struct Case {
        unsigned step, angle, radius;
    };
    for (const Case& c : {Case{10, 90, 25}, {20, 359, 300}, {33, 0, 5}, {7, 200, 0}}) {
        pluginSettings.TransitionMotionBlurStep = c.step;
        pluginSettings.TransitionMotionBlurAngle = c.angle;
        pluginSettings.TransitionMotionBlurRadius = c.radius;
        ExpectBent(kHurricane, c.step, PlainHurricane);
    }
}

} // namespace
} // namespace lumafold::test
