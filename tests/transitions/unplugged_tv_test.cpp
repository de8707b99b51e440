#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kRed = 0x0000FF, kBlue = 0xFF0000;

TEST(UnpluggedTV, CollapsesIntoALineAndADot) {
    const SettingsGuard guard;
    pluginSettings.TransitionUnpluggedTVStep = 50;
    pluginSettings.TransitionUnpluggedTVAfterglow = 0;
    const OwnedDib source = PlainPicture(101, 52, kRed), target = PlainPicture(101, 52, kBlue);
    EffectResult result;
    RunEffect(RowNamed("Unplugged TV"), source.Get(), target.Get(), result);
    ASSERT_EQ(result.Count(), 5);
    // Red in a box, blue around it.
    constexpr struct {
        int left, top, width, height;
    } kBoxes[] = {{0, 0, 101, 52}, {0, 13, 101, 26}, {0, 25, 101, 1}, {25, 25, 50, 1}, {49, 25, 2, 1}};
    for (std::int32_t i = 0; i < 5; ++i) {
        const auto& box = kBoxes[i];
        const OwnedDib expected = Picture(101, 52, [&](int x, int y) {
            const bool inside =
                x >= box.left && x < box.left + box.width && y >= box.top && y < box.top + box.height;
            return inside ? kRed : kBlue;
        });
        ExpectSamePicture(result.Image(i), expected.Get());
        EXPECT_EQ(result.Delay(i), i == 0 ? kTestPause : i < 3 ? kTestDelay : kTestDelay / 2);
    }
    for (const std::int32_t delay : {0, 1}) {
        EffectResult quick;
        RunEffect(RowNamed("Unplugged TV"), source.Get(), target.Get(), quick, delay);
        EXPECT_EQ(quick.Delay(1), delay);
        EXPECT_EQ(quick.Delay(3), 1);
    }
}

/// The diamond of 13 pixels, softened, over `background` from (left, top) on.
OwnedDib PlainGlow(DibHandle background, unsigned level, std::int32_t left, std::int32_t top) {
    const OwnedDib sharp = PlainPicture(32, 32, 0);
    constexpr std::int32_t kRows[][3] = {
        {14, 16, 16}, {15, 15, 17}, {16, 14, 18}, {17, 15, 17}, {18, 16, 16}};
    for (const auto& [y, first, last] : kRows) {
        for (std::int32_t x = first; x <= last; ++x) {
            DibSetPixel(LockedDib(sharp.Get()).Get(), x, y, level * 0x010101);
        }
    }
    const OwnedDib soft(DibGaussianBlur(sharp.Get(), 32, 10));
    OwnedDib frame(GlobalDuplicate(background));
    const LockedDib out(frame.Get());
    for (std::int32_t y = 0; y < 32; ++y) {
        for (std::int32_t x = 0; x < 32; ++x) {
            DibSetPixel(*out, left + x, top + y,
                        PlainMix(DibGetPixel(*out, left + x, top + y), 0xFFFFFF,
                                 PixelAt(soft.Get(), x, y) & 0xFF));
        }
    }
    return frame;
}

TEST(UnpluggedTV, GlowsUpAndFades) {
    const SettingsGuard guard;
    pluginSettings.TransitionUnpluggedTVStep = 30;
    // A frame smaller than the dot cuts it off; halves truncate towards zero.
    constexpr std::int32_t kCases[][4] = {
        {61, 47, 14, 7}, {7, 5, -12, -13}, {33, 1, 0, -15}, {1, 1, -15, -15}};
    for (const auto& [width, height, left, top] : kCases) {
        const OwnedDib source = BusyPicture(width, height, 1), target = BusyPicture(width, height, 2);
        EffectResult result;
        RunEffect(RowNamed("Unplugged TV"), source.Get(), target.Get(), result);
        // Collapses at 70, 40, 10; then 50, 80 and 100, 70, 40 percent of 255.
        const unsigned kLevels[] = {127, 204, 255, 178, 102};
        ASSERT_EQ(result.Count(), 1 + 3 + 3 + 5);
        for (std::int32_t i = 0; i < 5; ++i) {
            const OwnedDib expected = PlainGlow(target.Get(), kLevels[i], left, top);
            EXPECT_EQ(DibChecksum(result.Image(7 + i)), DibChecksum(expected.Get())) << width << ", " << i;
            EXPECT_EQ(result.Delay(7 + i), kTestDelay / 2);
        }
    }
}

} // namespace
} // namespace lumafold::test
