#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

std::uint32_t PlainBilinear(float fx, float fy, const PixelValue (&p)[4]) {
    std::uint32_t result = 0;
    for (int c = 0; c < 4; ++c) {
        const auto at = [&](int i) { return static_cast<float>((p[i] >> (8 * c)) & 0xFF); };
        const float top = at(0) * (1.0F - fx) + at(1) * fx;
        const float bottom = at(2) * (1.0F - fx) + at(3) * fx;
        result |= static_cast<std::uint32_t>((1.0F - fy) * top + fy * bottom) << (8 * c);
    }
    return result;
}

OwnedDib PlainRipple(const DibHeader* picture, float strength, int centreX, int centreY) {
    const int w = picture->biWidth, h = picture->biHeight;
    const double amplitude = 0.01 * (static_cast<int>(strength * 7930.0F) + 70);
    const double wavelength = 0.01 * (static_cast<int>(strength * 600.0F) + 400);
    const int offsetX = ((centreX - 100) * w) / 100, offsetY = ((centreY - 100) * h) / 100;
    const double cx = offsetX + w * 0.5, cy = offsetY + h * 0.5;
    const double farthest = std::sqrt((w - cx) * (w - cx) + (h - cy) * (h - cy)) + 0.0001;
    return Picture(w, h, [&](int x, int y) {
        const double dx = x - cx, dy = y - cy, r = std::sqrt(dx * dx + dy * dy);
        double shift = PortableSin(r / wavelength * (2 * kPi) + 0.01 * 180) * amplitude;
        shift = (1 - r / farthest) * (0.01 * 15) * shift;
        const double sx = std::min(std::max(x + shift, 0.0), w - 1.0),
                     sy = std::min(std::max(y + shift, 0.0), h - 1.0);
        const int xi = static_cast<int>(sx), yi = static_cast<int>(sy);
        const auto at = [&](int column, int row) {
            const PixelValue value = DibGetPixel(picture, column, row);
            return value == kNoPixel ? 0 : value;
        };
        return PlainBilinear(static_cast<float>(std::fmod(sx, 1.0)), static_cast<float>(std::fmod(sy, 1.0)),
                             {at(xi, yi), at(xi + 1, yi), at(xi, yi + 1), at(xi + 1, yi + 1)});
    });
}

/// Centres inside, on the corner, and so far away that distances hardly repeat.
TEST(LiquidMetal, IsItsPlainDefinition) {
    const SettingsGuard guard;
    struct Case {
        int step, viscosity, centreX, centreY;
    };
    for (const Case& c :
         {Case{10, 300, 100, 100}, {23, 600, 50, 150}, {50, 200, 83, 117}, {60, 333, 2000, -900}}) {
        pluginSettings.TransitionLiquidMetalStep = static_cast<unsigned>(c.step);
        pluginSettings.TransitionLiquidMetalViscosity = static_cast<unsigned>(c.viscosity);
        pluginSettings.TransitionLiquidMetalCenterX = static_cast<unsigned>(c.centreX);
        pluginSettings.TransitionLiquidMetalCenterY = static_cast<unsigned>(c.centreY);
        const int rising = 128 / c.step;
        const auto factor = static_cast<float>(0.01 * c.viscosity);
        for (const CanvasSize size : kOddSizes) {
            EXPECT_EQ(FrameCount(RowNamed("Liquid metal"), size.width, size.height), 255 / c.step + 1);
            ExpectFrames("Liquid metal", size, [&](int i, const DibHeader* from, const DibHeader* to) {
                const int mirrored = i <= rising ? i : std::max(2 * rising + 1 - i, 1);
                const float strength = static_cast<float>(mirrored * c.step) * 0.0078125F;
                const OwnedDib mix(DibCrossfade(from, to, i * c.step));
                return PlainRipple(LockedDib(mix.Get()).Get(), strength * factor, c.centreX, c.centreY);
            });
        }
    }
}

} // namespace
} // namespace lumafold::test
