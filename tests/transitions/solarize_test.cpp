#include "tests/transitions/effect_checks.h"

#include <vector>

#include "transitions/compositing.h"

namespace lumafold::test {
namespace {

struct Case {
    std::uint32_t step, intensity;
    std::vector<int> thresholds;
};

// The falling half replays what was stored, the first value for ever after its end, and nothing where there
// is none. 100 x 0.58 is 58 in single precision and less in double.
const Case kCases[] = {
    {5, 50, {5,  10, 15,  20,  25,  30,  35,  40,  45,  50,  55,  60,  65,  70,  75, 80, 85,
             90, 95, 100, 105, 110, 115, 120, 125, 125, 120, 115, 110, 105, 100, 95, 90, 85,
             80, 75, 70,  65,  60,  55,  50,  45,  40,  35,  30,  25,  20,  15,  10, 5}},
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
    for (const Case& expected : kCases) {
        SCOPED_TRACE(expected.step);
        pluginSettings.TransitionSolarizeStep = expected.step;
        pluginSettings.TransitionSolarizeIntensity = expected.intensity;
        for (const CanvasSize size : kOddSizes) {
            Rendered run = BusyRun("Solarize", size);
            ASSERT_EQ(run.result.returned, 1);
            ASSERT_EQ(run.result.Count(), static_cast<std::int32_t>(expected.thresholds.size()) + 1);
            for (std::int32_t i = 1; i < run.result.Count(); ++i) {
                const OwnedDib mix(DibCrossfadeHandles(run.source.Get(), run.target.Get(),
                                                       static_cast<int>(expected.step) * i));
                const LockedDib dib(mix.Get());
                const auto turned = [&](unsigned level) {
                    return static_cast<int>(level) < expected.thresholds[static_cast<std::size_t>(i - 1)]
                               ? 255 - level
                               : level;
                };
                for (std::int32_t y = 0; y < size.height; ++y) {
                    for (std::int32_t x = 0; x < size.width; ++x) {
                        const PixelValue v = DibGetPixel(dib.Get(), x, y);
                        DibSetPixel(dib.Get(), x, y,
                                    MakeColour(turned(RedOf(v)), turned(GreenOf(v)), turned(BlueOf(v))));
                    }
                }
                ExpectSamePicture(run.result.Image(i), mix.Get());
            }
        }
    }
}

} // namespace
} // namespace lumafold::test
