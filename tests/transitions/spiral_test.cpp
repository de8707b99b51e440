#include "image/resample.h"
#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr int kDegrees[] = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 20, 24, 30, 40, 45, 60};

struct PlainSpin {
    double scale, c, s;
    int w, h;

    PlainSpin(bool in, int k, int degrees, int width, int height) : w(width), h(height) {
        const int steps = 360 / degrees;
        const double way = static_cast<double>(k) / steps;
        scale = in ? way : 1 - way;
        const int angle = k * degrees;
        c = angle % 180 == 90 ? 0 : PortableCos(angle * (kPi / 180));
        s = angle % 180 == 0 ? 0 : PortableSin(angle * (kPi / 180));
    }
    PlainPoint At(int x, int y) const {
        const double right = x + 0.5 - w / 2.0, down = y + 0.5 - h / 2.0;
        return {(c * right + s * down) / scale, (c * down - s * right) / scale};
    }
};

OwnedDib PlainSmooth(const PlainSpin& spin, const DibHeader* turning, const DibHeader* ground) {
    OwnedDib level = CopyOf(turning);
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
        return static_cast<unsigned>(rounded) * 0x010101;
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
    const SettingsGuard guard;
    for (const unsigned entry : {0U, 6U, 10U, 14U, 15U, 16U}) {
        for (const bool smooth : {false, true}) {
            pluginSettings.TransitionSpiralStep = entry;
            pluginSettings.TransitionSpiralShear = smooth ? 1 : 0;
            for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {24, 32}}) {
                if (entry == 0 && size.width > 40) continue; // 360 frames
                for (const bool in : {true, false}) {
                    const char* name = in ? "Spiral in" : "Spiral out";
                    EXPECT_EQ(FrameCount(RowNamed(name), size.width, size.height), 360 / kDegrees[entry]);
                    ExpectFrames(name, size, [&](int k, const DibHeader* from, const DibHeader* to) {
                        const PlainSpin spin(in, k, kDegrees[entry], size.width, size.height);
                        return (smooth ? PlainSmooth : PlainQuick)(spin, in ? to : from, in ? from : to);
                    });
                }
            }
        }
    }
}

} // namespace
} // namespace lumafold::test
