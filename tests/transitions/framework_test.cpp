#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

OwnedDib PlainZoomBlur(const DibHeader* picture, int intensity) {
    const int w = picture->biWidth, h = picture->biHeight, cx = w / 2, cy = h / 2;
    const auto s = static_cast<float>(0.01 * intensity);
    return Picture(w, h, [&](int x, int y) {
        unsigned sums[3] = {}, count = 0;
        for (int k = 0; k < 20; ++k) {
            const double f = 1.0 - (static_cast<double>(k) * static_cast<double>(s)) * 0.01;
            const int px = k == 0 ? x : static_cast<int>(f * (x - cx) + cx);
            const int py = k == 0 ? y : static_cast<int>(f * (y - cy) + cy);
            const PixelValue value = DibGetPixel(picture, px, py);
            if (value == kNoPixel) break;
            ++count;
            for (int c = 0; c < 3; ++c) {
                sums[c] += (value >> (8 * c)) & 0xFF;
            }
        }
        return MakeColour(sums[0] / count, sums[1] / count, sums[2] / count);
    });
}

TEST(Framework, IsItsPlainDefinition) {
    const SettingsGuard guard;
    // Not read, whatever the dialog shows.
    pluginSettings.TransitionFrameworkStep = 0;
    pluginSettings.TransitionFrameworkCycles = 1;
    pluginSettings.TransitionFrameworkIntensity = 7;
    for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {60, 46}}) {
        ExpectFrames("Framework", size, [](int i, const DibHeader* from, const DibHeader* to) {
            const OwnedDib mix(DibCrossfade(from, to, 10 * i));
            const int step = i <= 13 ? i - 1 : 25 - i;
            return PlainZoomBlur(LockedDib(mix.Get()).Get(), 100 + 31 * step + step / 4);
        });
    }
}

} // namespace
} // namespace lumafold::test
