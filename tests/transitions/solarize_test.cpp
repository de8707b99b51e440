#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

struct Case {
    std::uint32_t step, intensity;
    std::vector<unsigned> thresholds;
};

// The falling half replays what was stored, the first value for ever after its end, and nothing where there
// is none. 100 x 0.58 is 58 in single precision and less in double.
const Case kCases[] = {
    {20, 50, {20, 40, 60, 80, 100, 120, 120, 100, 80, 60, 40, 20}},
    {50, 100, {100, 200, 200, 100, 100}},
    {50, 58, {58, 116, 116, 58, 58}},
    {64, 100, {128, 256, 256}},
    {64, 0xFFFFFFFF, {256, 256, 256}},
    {64, 0, {0, 0, 0}},
    {129, 100, {0}},
    {200, 100, {0}},
    {255, 100, {}},
};

TEST(Solarize, TurnsOverWhatLiesBelowTheThreshold) {
    const SettingsGuard guard;
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.step);
        pluginSettings.TransitionSolarizeStep = c.step;
        pluginSettings.TransitionSolarizeIntensity = c.intensity;
        for (const CanvasSize size : kOddSizes) {
            ASSERT_EQ(FrameCount(RowNamed("Solarize"), size.width, size.height),
                      static_cast<int>(c.thresholds.size()) + 1);
            ExpectFrames("Solarize", size, [&](int i, const DibHeader* from, const DibHeader* to) {
                const OwnedDib mix(DibCrossfade(from, to, static_cast<int>(c.step) * i));
                const LockedDib dib(mix.Get());
                const auto turned = [&](unsigned level) {
                    return level < c.thresholds[static_cast<std::size_t>(i - 1)] ? 255 - level : level;
                };
                return Picture(size.width, size.height, [&](int x, int y) {
                    const PixelValue v = DibGetPixel(*dib, x, y);
                    return MakeColour(turned(RedOf(v)), turned(GreenOf(v)), turned(BlueOf(v)));
                });
            });
        }
    }
}

} // namespace
} // namespace lumafold::test
