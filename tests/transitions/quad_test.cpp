#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

TEST(Quad, AQuarterIsTheAverageOfItsPixels) {
    const SettingsGuard guard;
    pluginSettings.TransitionQuadStepSize = 25; // 25 and 50
    const OwnedDib source = PlainPicture(8, 8, 0xFFFFFF), target = BusyPicture(8, 8, 3);
    EffectResult result;
    RunEffect(RowNamed("Quad (expand)"), source.Get(), target.Get(), result);
    ASSERT_EQ(result.Count(), 3);
    // At 50 % the bottom right quarter's first pixel, rows after columns.
    const auto red = [&](std::int32_t x, std::int32_t y) { return RedOf(PixelAt(target.Get(), x, y)); };
    EXPECT_EQ(RedOf(PixelAt(result.Image(2), 5, 5)),
              ((red(4, 4) + red(5, 4)) / 2 + (red(4, 5) + red(5, 5)) / 2) / 2);
    EXPECT_EQ(PixelAt(result.Image(2), 4, 4), 0xFFFFFFU);
}

TEST(Quad, StopsAStepShortOf100) {
    const SettingsGuard guard;
    for (const auto& [step, frames] : {std::pair{50U, 1}, {49U, 2}, {34U, 2}, {33U, 3}, {0U, 0}}) {
        pluginSettings.TransitionQuadStepSize = step;
        EXPECT_EQ(FrameCount(RowNamed("Quad (expand)"), 640, 480), frames) << step;
    }
}

} // namespace
} // namespace lumafold::test
