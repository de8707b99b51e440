#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

TEST(Submerge, SinksByMultiplesAndRisesFromTheTop) {
    const SettingsGuard guard;
    pluginSettings.TransitionSubmergeStep = 50;
    constexpr unsigned kLevels[] = {0, 50, 100, 150, 200, 250, 205, 155, 105, 55, 5};
    for (const PixelValue colour : {0x946B41U, 0x7F0A0B0CU, kNoPixel}) {
        pluginSettings.TransitionSubmergeColor = colour;
        for (const CanvasSize size : kOddSizes) {
            EXPECT_EQ(FrameCount(RowNamed("Submerge"), size.width, size.height), 11);
            ExpectFrames("Submerge", size, [&](int i, const DibHeader* from, const DibHeader* to) {
                return Picture(size.width, size.height, [&](int x, int y) {
                    const PixelValue v = DibGetPixel(i < 6 ? from : to, x, y);
                    const unsigned light = RedOf(v) * 30 / 100 + GreenOf(v) * 59 / 100 + BlueOf(v) * 11 / 100;
                    return light < kLevels[i] ? colour : v;
                });
            });
        }
    }
}

} // namespace
} // namespace lumafold::test
