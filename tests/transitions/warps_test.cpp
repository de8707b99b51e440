#include "platform/portable_math.h"
#include "tests/transitions/plain_sample.h"

namespace lumafold::test {
namespace {

constexpr int kBurp = 8, kHurricane = 12, kSingularity = 18;

double Swell(double part, double whole) { return PortableSin(kPi * part / whole); }

PlainPoint PlainImplode(int row, int p, int w, int h, int x, int y) {
    const auto& s = pluginSettings;
    const double travel = 0.6 * (p - 50), gravity = s.TransitionImplodeMax / 100.0;
    const double cx = (s.TransitionImplodeXPos + (s.TransitionImplodeTrack == 1 ? travel : 0)) * w / 100;
    const double cy = (s.TransitionImplodeYPos + (s.TransitionImplodeTrack == 2 ? travel : 0)) * h / 100;
    const double burp = p < 75 ? Swell(p, 75) : Swell(p - 75, 25) / 3;
    const double a = row == kBurp ? gravity * burp : 2 * gravity * Swell(p, 100);
    const double right = x + 0.5 - cx, down = y + 0.5 - cy;
    const double dx = right / std::max(cx, w - cx), dy = down / std::max(cy, h - cy);
    const double d = std::sqrt(dx * dx + dy * dy);
    if (d >= 1 || d == 0) return {x + 0.5, y + 0.5};
    const double weight = a * (1 - d * d) * (1 - d * d);
    const double sampled = PortablePow(d, row == kBurp ? 1 + weight : 1 / (1 + weight));
    return {cx + right * sampled / d, cy + down * sampled / d};
}

TEST(Implode, IsItsPlainDefinition) {
    SettingsGuard guard;
    struct Case {
        int row;
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
        pluginSettings.TransitionMattcolour = 0x2040C0;
        for (const CanvasSize size : kOddSizes) {
            const std::int32_t w = size.width, h = size.height;
            ExpectFrames(c.row, w, h, [&](int i, const DibHeader* from, const DibHeader* to) {
                const int p = i * static_cast<int>(c.step);
                const OwnedDib mix(DibCrossfade(from, to, p * 255 / 100));
                const LockedDib locked(mix.Get());
                return Picture(w, h, [&](int x, int y) {
                    return PlainSample(locked.Get(), {PlainImplode(c.row, p, w, h, x, y)}, 0x2040C0);
                });
            });
        }
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
    SettingsGuard guard;
    struct Case {
        unsigned step, angle, radius;
    };
    for (const Case& c : {Case{10, 90, 25}, {20, 359, 300}, {33, 0, 5}, {7, 200, 0}}) {
        pluginSettings.TransitionMotionBlurStep = c.step;
        pluginSettings.TransitionMotionBlurAngle = c.angle;
        pluginSettings.TransitionMotionBlurRadius = c.radius;
        pluginSettings.TransitionMattcolour = 0x2040C0;
        for (const CanvasSize size : kOddSizes) {
            const std::int32_t w = size.width, h = size.height;
            ExpectFrames(kHurricane, w, h, [&](int i, const DibHeader* from, const DibHeader* to) {
                const int p = i * static_cast<int>(c.step);
                const OwnedDib mix(DibCrossfade(from, to, p * 255 / 100));
                const LockedDib locked(mix.Get());
                return Picture(w, h, [&](int x, int y) {
                    return PlainSample(locked.Get(), PlainHurricane(p, w, h, x, y), 0x2040C0);
                });
            });
        }
    }
}

/// The middle frame over a picture that tells where each colour came from.
struct Map {
    static constexpr std::int32_t kWidth = 201, kHeight = 201;
    EffectResult result;
    DibHandle frame = 0;

    explicit Map(int row) {
        pluginSettings.TransitionImplodeStep = pluginSettings.TransitionMotionBlurStep = 50;
        pluginSettings.TransitionImplodeTrack = 0;
        const OwnedDib picture = MapPicture(kWidth, kHeight);
        RunEffect(row, picture.Get(), picture.Get(), result);
        frame = result.Image(1);
    }
    PixelValue At(std::int32_t x, std::int32_t y) const { return PixelAt(frame, x, y); }
};

TEST(Warps, MoveThePictureVisiblyAndTheRightWay) {
    SettingsGuard guard;
    for (const int row : {kBurp, kSingularity, kHurricane}) {
        const Map map(row);
        double moved = 0, pixels = 0;
        for (int y = 0; y < Map::kHeight; ++y) {
            for (int x = 0; x < Map::kWidth; ++x) {
                const PixelValue from = map.At(x, y);
                const double distance =
                    std::hypot(static_cast<double>(RedOf(from)) - x, static_cast<double>(GreenOf(from)) - y);
                // The rim hardly moves, and the cross-fade alone takes a level off here and there.
                if (distance < 0.01 * Map::kWidth) continue;
                moved += distance;
                ++pixels;
            }
        }
        EXPECT_GT(moved / pixels, 0.05 * Map::kWidth) << row;
        EXPECT_GT(pixels, 0.3 * Map::kWidth * Map::kHeight) << row;
    }
    // Drawn into the point: half way out, what shows comes from farther out; the burp shows the middle
    // enlarged.
    EXPECT_GT(RedOf(Map(kSingularity).At(140, 100)), 160U);
    EXPECT_LT(RedOf(Map(kBurp).At(140, 100)), 130U);
    // A quarter turn clockwise about the eye: above it shows what lay to its left.
    const PixelValue above = Map(kHurricane).At(100, 90);
    EXPECT_NEAR(RedOf(above), 90.0, 2);
    EXPECT_NEAR(GreenOf(above), 100.0, 2);
}

} // namespace
} // namespace lumafold::test
