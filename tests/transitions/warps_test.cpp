// The effects that bend and turn the picture, against plain definitions in the library's own sine and power:
// what the product's tables, floats and vectors give must be the same to the byte.
#include "image/resample.h"
#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kMatte = 0x2040C0;

struct PlainPoint {
    double u, v;
};
double Unit(double x) { return std::clamp(x, 0.0, 1.0); }
double Swell(double part, double whole) { return PortableSin(kPi * part / whole); }

/// The average colour of the points of one pixel of a bent picture.
PixelValue PlainSample(const DibHeader& picture, const std::vector<PlainPoint>& points) {
    const double width = picture.biWidth, height = picture.biHeight;
    PixelValue result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto level = [=](PixelValue v) { return static_cast<double>((v >> shift) & 0xFF); };
        double sum = 0;
        for (const auto [u, v] : points) {
            const double coverage = Unit(std::min(u, width - u) + 1) * Unit(std::min(v, height - v) + 1);
            const double x = std::clamp(u - 0.5, 0.0, width - 1), y = std::clamp(v - 0.5, 0.0, height - 1);
            const int left = static_cast<int>(x), top = static_cast<int>(y);
            const auto across = [&](int row) {
                const double from = level(DibGetPixel(picture, left, row)),
                             to = level(DibGetPixel(picture, std::min(left + 1, picture.biWidth - 1), row));
                return from + (to - from) * (x - left);
            };
            const double upper = across(top), lower = across(std::min(top + 1, picture.biHeight - 1));
            sum += coverage * (upper + (lower - upper) * (y - top)) + (1 - coverage) * level(kMatte);
        }
        const double rounded = sum / static_cast<double>(points.size()) + 0.5;
        result |= static_cast<PixelValue>(rounded) << shift;
    }
    return result;
}

/// Frame i mixes the pictures by its percentage and takes each pixel from `points(p, size, x, y)`.
template <typename Points>
void ExpectBent(const char* name, const PluginSettings& settings, std::uint32_t step, Points points) {
    for (const CanvasSize size : kOddSizes) {
        ExpectFrames(name, settings, size, [&](int i, const DibHeader& from, const DibHeader& to) {
            const int p = i * static_cast<int>(step);
            const OwnedDib mix = DibCrossfade(from, to, p * 255 / 100);
            return Picture(size.width, size.height,
                           [&](int x, int y) { return PlainSample(*mix, points(p, size, x, y)); });
        });
    }
}

TEST(Implode, IsItsPlainDefinition) {
    struct Case {
        const char* name;
        std::uint32_t step, gravity, track, atX, atY;
    };
    for (const Case& c : {Case{"Burp", 5, 150, 1, 50, 50},
                          {"Burp", 13, 250, 2, 30, 70},
                          {"Quantum singularity", 5, 150, 1, 50, 50},
                          {"Quantum singularity", 17, 250, 0, 66, 31},
                          {"Quantum singularity", 1, 10, 2, 70, 70},
                          {"Burp", 25, 90, 3, 200, 0}}) {
        PluginSettings settings;
        settings.TransitionMattcolour = kMatte;
        settings.TransitionImplodeStep = c.step;
        settings.TransitionImplodeMax = c.gravity;
        settings.TransitionImplodeTrack = c.track;
        settings.TransitionImplodeXPos = c.atX;
        settings.TransitionImplodeYPos = c.atY;
        const bool burps = c.name[0] == 'B';
        ExpectBent(c.name, settings, c.step, [&](int p, CanvasSize size, int x, int y) {
            const double travel = 0.6 * (p - 50), gravity = c.gravity / 100.0;
            const double cx = (c.atX + (c.track == 1 ? travel : 0)) * size.width / 100;
            const double cy = (c.atY + (c.track == 2 ? travel : 0)) * size.height / 100;
            const double burp = p < 75 ? Swell(p, 75) : Swell(p - 75, 25) / 3;
            const double a = burps ? gravity * burp : 2 * gravity * Swell(p, 100);
            const double right = x + 0.5 - cx, down = y + 0.5 - cy;
            const double d =
                std::hypot(right / std::max(cx, size.width - cx), down / std::max(cy, size.height - cy));
            if (d >= 1 || d == 0) return std::vector{PlainPoint{x + 0.5, y + 0.5}};
            const double weight = a * (1 - d * d) * (1 - d * d);
            const double stretch = std::pow(d, burps ? 1 + weight : 1 / (1 + weight)) / d;
            return std::vector{PlainPoint{cx + right * stretch, cy + down * stretch}};
        });
    }
}

TEST(Hurricane, IsItsPlainDefinition) {
    struct Case {
        std::uint32_t step, angle, radius;
    };
    for (const Case& c : {Case{10, 90, 25}, {20, 359, 300}, {33, 0, 5}, {7, 200, 0}}) {
        PluginSettings settings;
        settings.TransitionMattcolour = kMatte;
        settings.TransitionMotionBlurStep = c.step;
        settings.TransitionMotionBlurAngle = c.angle;
        settings.TransitionMotionBlurRadius = c.radius;
        ExpectBent("Hurricane", settings, c.step, [&](int p, CanvasSize size, int x, int y) {
            const double angle = c.angle * (kPi / 180) * Swell(p, 100);
            const double radius = c.radius / 10.0 * Swell(p, 100);
            const int samples = std::max(1, static_cast<int>(std::ceil(2 * radius))) + 1;
            const double halfWidth = size.width / 2.0, halfHeight = size.height / 2.0;
            const double right = x + 0.5 - halfWidth, down = y + 0.5 - halfHeight;
            const double nx = right / halfWidth, ny = down / halfHeight, square = nx * nx + ny * ny;
            const double turn = square < 1 ? angle * (1 - square) * (1 - square) : 0;
            std::vector<PlainPoint> points;
            for (int j = 0; j < samples; ++j) {
                const double offset = -radius + 2 * radius * j / (samples - 1);
                const double t = turn + (radius > 0 ? offset / std::max(std::hypot(right, down), radius) : 0);
                const double cosine = PortableCos(t), sine = PortableSin(t);
                points.push_back({halfWidth + (cosine * nx + sine * ny) * halfWidth,
                                  halfHeight + (cosine * ny - sine * nx) * halfHeight});
            }
            return points;
        });
    }
}

/// From a point of the frame to the one of the turning picture, both about the middle.
struct PlainSpin {
    double scale, c, s, halfWidth, halfHeight;

    PlainSpin(double way, int angle, CanvasSize size)
        : scale(way), c(angle % 180 == 90 ? 0 : PortableCos(angle * (kPi / 180))),
          s(angle % 180 == 0 ? 0 : PortableSin(angle * (kPi / 180))), halfWidth(size.width / 2.0),
          halfHeight(size.height / 2.0) {}
    PlainPoint At(int x, int y) const {
        const double right = x + 0.5 - halfWidth, down = y + 0.5 - halfHeight;
        return {(c * right + s * down) / scale, (c * down - s * right) / scale};
    }
};

/// A colour sampled from the picture halved as often as it fits, and a soft edge one pixel wide.
OwnedDib PlainSmooth(const PlainSpin& spin, const DibHeader& turning, const DibHeader& ground) {
    OwnedDib level = DibCopy(turning);
    double size = 1;
    for (; spin.scale * size * 2 <= 1 && level->biWidth >= 2 && level->biHeight >= 2; size *= 2)
        level = DibScale(*level, 50, 50);
    const OwnedDib layer = Picture(ground.biWidth, ground.biHeight, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        return PlainSample(*level, {{std::clamp((u + spin.halfWidth) / size, 0.0, 1.0 * level->biWidth),
                                     std::clamp((v + spin.halfHeight) / size, 0.0, 1.0 * level->biHeight)}});
    });
    const OwnedDib mask = Picture(ground.biWidth, ground.biHeight, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        const double rounded = 255 * Unit((spin.halfWidth - std::fabs(u)) * spin.scale + 0.5) *
                                   Unit((spin.halfHeight - std::fabs(v)) * spin.scale + 0.5) +
                               0.5;
        return static_cast<unsigned>(rounded) * 0x010101;
    });
    return DibMaskBlend(*layer, ground, *mask);
}

OwnedDib PlainQuick(const PlainSpin& spin, const DibHeader& turning, const DibHeader& ground) {
    return Picture(ground.biWidth, ground.biHeight, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        const PixelValue pixel = DibGetPixel(turning, static_cast<int>(std::floor(u + spin.halfWidth)),
                                             static_cast<int>(std::floor(v + spin.halfHeight)));
        return pixel == kNoPixel ? DibGetPixel(ground, x, y) : pixel;
    });
}

TEST(Spiral, IsItsPlainDefinition) {
    for (const auto& [entry, degrees] : {std::pair{0U, 1}, {6U, 8}, {10U, 15}, {14U, 40}, {16U, 60}}) {
        for (const auto plain : {PlainSmooth, PlainQuick}) {
            PluginSettings settings;
            settings.TransitionSpiralStep = entry;
            settings.TransitionSpiralShear = plain == PlainSmooth ? 1 : 0;
            for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {61, 47}, {24, 32}}) {
                if (entry == 0 && size.width > 40) continue; // 360 frames
                for (const bool in : {true, false}) {
                    ExpectFrames(in ? "Spiral in" : "Spiral out", settings, size,
                                 [&, degrees = degrees](int k, const DibHeader& from, const DibHeader& to) {
                                     const double done = static_cast<double>(k) / (360 / degrees);
                                     const PlainSpin spin(in ? done : 1 - done, k * degrees, size);
                                     return plain(spin, in ? to : from, in ? from : to);
                                 });
                }
            }
        }
    }
}

} // namespace
} // namespace lumafold::test
