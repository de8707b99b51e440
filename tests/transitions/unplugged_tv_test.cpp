#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/compositing.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kUnpluggedTV = 32;
constexpr PixelValue kRed = 0x0000FF, kBlue = 0xFF0000;

/// Red in the box, blue around it.
void ExpectBox(DibHandle frame, std::int32_t left, std::int32_t top, std::int32_t width,
               std::int32_t height) {
    const LockedDib dib(frame);
    for (std::int32_t y = 0; y < dib->biHeight; ++y) {
        for (std::int32_t x = 0; x < dib->biWidth; ++x) {
            const bool inside = x >= left && x < left + width && y >= top && y < top + height;
            ASSERT_EQ(DibGetPixel(dib.Get(), x, y), inside ? kRed : kBlue) << x << ", " << y;
        }
    }
}

TEST(UnpluggedTV, CollapsesIntoALineAndADot) {
    const SettingsGuard guard;
    pluginSettings.TransitionUnpluggedTVStep = 50;
    pluginSettings.TransitionUnpluggedTVAfterglow = 0;
    const OwnedDib source = PlainPicture(101, 52, kRed), target = PlainPicture(101, 52, kBlue);
    EffectResult result;
    RunEffect(kUnpluggedTV, source.Get(), target.Get(), result);
    ASSERT_EQ(result.Count(), 5);
    ExpectBox(result.Image(0), 0, 0, 101, 52);
    ExpectBox(result.Image(1), 0, 13, 101, 26);
    ExpectBox(result.Image(2), 0, 25, 101, 1);
    ExpectBox(result.Image(3), 25, 25, 50, 1);
    ExpectBox(result.Image(4), 49, 25, 2, 1);
    for (std::int32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(result.Delay(i), i == 0 ? kTestPause : i < 3 ? kTestDelay : kTestDelay / 2);
    }
    for (const std::int32_t delay : {0, 1}) {
        EffectResult quick;
        RunEffect(kUnpluggedTV, source.Get(), target.Get(), quick, delay);
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
            const unsigned m = PixelAt(soft.Get(), x, y) & 0xFF;
            const PixelValue f = DibGetPixel(out.Get(), left + x, top + y);
            DibSetPixel(out.Get(), left + x, top + y,
                        MakeColour(m + RedOf(f) * (255 - m) / 255, m + GreenOf(f) * (255 - m) / 255,
                                   m + BlueOf(f) * (255 - m) / 255));
        }
    }
    return frame;
}

TEST(UnpluggedTV, GlowsUpAndFades) {
    const SettingsGuard guard;
    pluginSettings.TransitionUnpluggedTVStep = 30;
    struct Case {
        std::int32_t width, height, left, top;
    };
    // A frame smaller than the dot cuts it off; halves truncate towards zero.
    for (const Case& c : {Case{61, 47, 14, 7}, {7, 5, -12, -13}, {33, 1, 0, -15}, {1, 1, -15, -15}}) {
        const OwnedDib source = BusyPicture(c.width, c.height, 1), target = BusyPicture(c.width, c.height, 2);
        EffectResult result;
        RunEffect(kUnpluggedTV, source.Get(), target.Get(), result);
        // Collapses at 70, 40, 10; then 50, 80 and 100, 70, 40 percent of 255.
        const unsigned kLevels[] = {127, 204, 255, 178, 102};
        ASSERT_EQ(result.Count(), 1 + 3 + 3 + 5);
        for (std::int32_t i = 0; i < 5; ++i) {
            const OwnedDib expected = PlainGlow(target.Get(), kLevels[i], c.left, c.top);
            EXPECT_EQ(DibChecksum(result.Image(7 + i)), DibChecksum(expected.Get())) << c.width << ", " << i;
            EXPECT_EQ(result.Delay(7 + i), kTestDelay / 2);
        }
    }
}

} // namespace
} // namespace lumafold::test
