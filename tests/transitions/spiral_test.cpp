#include "image/resample.h"
#include "platform/portable_math.h"
#include "tests/transitions/plain_sample.h"

namespace lumafold::test {
namespace {

constexpr int kSpiralIn = 29, kSpiralOut = 30;
constexpr int kDegrees[] = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 20, 24, 30, 40, 45, 60};

struct PlainSpin {
    double scale, c, s;
    int w, h;

    PlainSpin(int row, int k, int degrees, int width, int height) : w(width), h(height) {
        const int steps = 360 / degrees;
        const double way = static_cast<double>(k) / steps;
        scale = row == kSpiralIn ? way : 1 - way;
        const int angle = k * degrees;
        c = angle % 180 == 90 ? 0 : PortableCos(angle * (kPi / 180));
        s = angle % 180 == 0 ? 0 : PortableSin(angle * (kPi / 180));
    }
    PlainPoint At(int x, int y) const {
        const double right = x + 0.5 - w / 2.0, down = y + 0.5 - h / 2.0;
        return {(c * right + s * down) / scale, (c * down - s * right) / scale};
    }
};

OwnedDib PlainSmooth(const PlainSpin& spin, DibHandle turning, const DibHeader* ground) {
    OwnedDib level(GlobalDuplicate(turning));
    double size = 1;
    for (std::int32_t w = spin.w, h = spin.h; spin.scale * size * 2 <= 1 && w >= 2 && h >= 2; size *= 2) {
        level = OwnedDib(DibScale(level.Get(), 50, 50));
        DibQuery(level.Get(), &w, &h, nullptr, nullptr);
    }
    const LockedDib picture(level.Get());
    const double w = picture->biWidth, h = picture->biHeight;
    const OwnedDib layer = Picture(spin.w, spin.h, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        const PlainPoint point{std::min(std::max((u + spin.w / 2.0) / size, 0.0), w),
                               std::min(std::max((v + spin.h / 2.0) / size, 0.0), h)};
        return PlainSample(picture.Get(), {point}, 0);
    });
    const OwnedDib mask = Picture(spin.w, spin.h, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        const double share = Unit((spin.w / 2.0 - std::fabs(u)) * spin.scale + 0.5) *
                             Unit((spin.h / 2.0 - std::fabs(v)) * spin.scale + 0.5);
        const double rounded = 255 * share + 0.5;
        const auto grey = static_cast<unsigned>(rounded);
        return MakeColour(grey, grey, grey);
    });
    const LockedDib colours(layer.Get()), weights(mask.Get());
    return OwnedDib(DibMaskBlend(colours.Get(), ground, weights.Get()));
}

OwnedDib PlainQuick(const PlainSpin& spin, const DibHeader* turning, const DibHeader* ground) {
    return Picture(spin.w, spin.h, [&](int x, int y) {
        const auto [u, v] = spin.At(x, y);
        const PixelValue pixel = DibGetPixel(turning, static_cast<int>(std::floor(u + spin.w / 2.0)),
                                             static_cast<int>(std::floor(v + spin.h / 2.0)));
        return pixel == kNoPixel ? DibGetPixel(ground, x, y) : pixel;
    });
}

TEST(Spiral, IsItsPlainDefinition) {
    SettingsGuard guard;
    for (const unsigned entry : {0U, 6U, 10U, 14U, 15U, 16U}) {
        for (const unsigned smooth : {0U, 1U}) {
            pluginSettings.TransitionSpiralStep = entry;
            pluginSettings.TransitionSpiralShear = smooth;
            for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {24, 32}}) {
                const std::int32_t w = size.width, h = size.height;
                if (entry == 0 && w > 40) continue; // 360 frames
                for (const int row : {kSpiralIn, kSpiralOut}) {
                    EXPECT_EQ(FrameCount(row, w, h), 360 / kDegrees[entry]);
                    ExpectFrames(row, w, h, [&](int k, const DibHeader* from, const DibHeader* to) {
                        const PlainSpin spin(row, k, kDegrees[entry], w, h);
                        const DibHeader *turning = row == kSpiralIn ? to : from,
                                        *ground = row == kSpiralIn ? from : to;
                        if (smooth == 0) return PlainQuick(spin, turning, ground);
                        const OwnedDib copy =
                            Picture(w, h, [&](int x, int y) { return DibGetPixel(turning, x, y); });
                        return PlainSmooth(spin, copy.Get(), ground);
                    });
                }
            }
        }
    }
}

/// A half turn at half size is the halved picture upside down, with straight edges; the quarter turn is
/// clockwise.
TEST(Spiral, TurnsClockwiseAndKeepsQuarterTurnsExact) {
    SettingsGuard guard;
    pluginSettings.TransitionSpiralStep = 15; // 45 degrees: eight steps
    const OwnedDib source = BusyPicture(16, 16, 1), target = PlainPicture(16, 16, 0x123456);
    const OwnedDib halved(DibScale(source.Get(), 50, 50));
    EffectResult result;
    RunEffect(kSpiralOut, source.Get(), target.Get(), result);
    ASSERT_EQ(result.Count(), 8);
    const OwnedDib expected = Picture(16, 16, [&](int x, int y) {
        const bool inside = x >= 4 && x < 12 && y >= 4 && y < 12;
        return inside ? PixelAt(halved.Get(), 11 - x, 11 - y) : 0x123456U;
    });
    EXPECT_EQ(DibChecksum(result.Image(4)), DibChecksum(expected.Get()));

    // A quarter of the way round at three quarters of the size: what was on top is on the right.
    const OwnedDib halves = Picture(16, 16, [](int, int y) { return y < 8 ? 0x0000FFU : 0xFF0000U; });
    EffectResult turned;
    RunEffect(kSpiralOut, halves.Get(), target.Get(), turned);
    EXPECT_EQ(PixelAt(turned.Image(2), 11, 8), 0x0000FFU);
    EXPECT_EQ(PixelAt(turned.Image(2), 4, 8), 0xFF0000U);
    EXPECT_EQ(PixelAt(turned.Image(2), 1, 8), 0x123456U);
}

} // namespace
} // namespace lumafold::test
