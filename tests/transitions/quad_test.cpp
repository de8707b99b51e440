#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kColours[] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF}; // by quarter

/// The background but for the quarters, which all have one size.
void ExpectQuarters(DibHandle frame, DibHandle background, const int (&lefts)[2], const int (&tops)[2],
                    int width, int height) {
    const OwnedDib expected = Picture(61, 48, [&](int x, int y) {
        for (int i = 0; i < 4; ++i) {
            const int right = x - lefts[i % 2], down = y - tops[i / 2];
            if (right >= 0 && right < width && down >= 0 && down < height) return kColours[i];
        }
        return PixelAt(background, x, y);
    });
    ExpectSamePicture(frame, expected.Get());
}

TEST(Quad, QuartersStandInTheMiddleOfHalfSizedPlaces) {
    const OwnedDib four =
        Picture(61, 48, [](int x, int y) { return kColours[(y >= 24 ? 2 : 0) + (x >= 30 ? 1 : 0)]; });
    const OwnedDib busy = BusyPicture(61, 48, 7);
    EffectResult grow, shrink;
    RunEffect(RowNamed("Quad (expand)"), busy.Get(), four.Get(), grow);
    RunEffect(RowNamed("Quad (contract)"), four.Get(), busy.Get(), shrink);
    ASSERT_EQ(grow.Count(), 9);
    ASSERT_EQ(shrink.Count(), 9);
    ExpectSamePicture(grow.Image(0), busy.Get());
    ExpectSamePicture(shrink.Image(0), four.Get());
    // Quarters are 30 or 31 wide and 24 high, and all of them lie in places 30 wide.
    ExpectQuarters(grow.Image(1), busy.Get(), {13, 43}, {11, 35}, 3, 2);   // 10 %
    ExpectQuarters(grow.Image(8), busy.Get(), {3, 33}, {2, 26}, 24, 19);   // 80 %
    ExpectQuarters(shrink.Image(1), busy.Get(), {1, 31}, {1, 25}, 27, 21); // 90 %
    ExpectQuarters(shrink.Image(2), busy.Get(), {3, 33}, {2, 26}, 24, 19);
}

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
