#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kContract = 16, kExpand = 17;
constexpr PixelValue kColours[] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF}; // by quarter

OwnedDib FourColours(std::int32_t width, std::int32_t height) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            DibSetPixel(dib.Get(), x, y, kColours[(y >= height / 2 ? 2 : 0) + (x >= width / 2 ? 1 : 0)]);
        }
    }
    return picture;
}

/// One quarter's place in a frame.
struct Place {
    std::int32_t x, y, width, height;
};

void ExpectQuarters(DibHandle frame, DibHandle background, const Place (&places)[4]) {
    const LockedDib dib(frame);
    for (std::int32_t y = 0; y < dib->biHeight; ++y) {
        for (std::int32_t x = 0; x < dib->biWidth; ++x) {
            PixelValue expected = PixelAt(background, x, y);
            for (int i = 0; i < 4; ++i) {
                const Place& p = places[i];
                if (x >= p.x && x < p.x + p.width && y >= p.y && y < p.y + p.height) expected = kColours[i];
            }
            ASSERT_EQ(DibGetPixel(dib.Get(), x, y), expected) << x << ", " << y;
        }
    }
}

TEST(Quad, QuartersStandInTheMiddleOfHalfSizedPlaces) {
    const OwnedDib four = FourColours(61, 48), busy = BusyPicture(61, 48, 7);
    EffectResult grow, shrink;
    RunEffect(kExpand, busy.Get(), four.Get(), grow);
    RunEffect(kContract, four.Get(), busy.Get(), shrink);
    ASSERT_EQ(grow.Count(), 9);
    ASSERT_EQ(shrink.Count(), 9);
    EXPECT_EQ(DibChecksum(grow.Image(0)), DibChecksum(busy.Get()));
    EXPECT_EQ(DibChecksum(shrink.Image(0)), DibChecksum(four.Get()));
    // Quarters are 30 or 31 wide and 24 high, and all of them lie in places 30 wide.
    const Place kAt10[] = {{13, 11, 3, 2}, {43, 11, 3, 2}, {13, 35, 3, 2}, {43, 35, 3, 2}};
    const Place kAt80[] = {{3, 2, 24, 19}, {33, 2, 24, 19}, {3, 26, 24, 19}, {33, 26, 24, 19}};
    const Place kAt90[] = {{1, 1, 27, 21}, {31, 1, 27, 21}, {1, 25, 27, 21}, {31, 25, 27, 21}};
    ExpectQuarters(grow.Image(1), busy.Get(), kAt10);
    ExpectQuarters(grow.Image(8), busy.Get(), kAt80);
    ExpectQuarters(shrink.Image(1), busy.Get(), kAt90);
    ExpectQuarters(shrink.Image(2), busy.Get(), kAt80);
}

TEST(Quad, AQuarterIsTheAverageOfItsPixels) {
    const SettingsGuard guard;
    pluginSettings.TransitionQuadStepSize = 25; // 25 and 50
    const OwnedDib source = PlainPicture(8, 8, 0xFFFFFF), target = BusyPicture(8, 8, 3);
    EffectResult result;
    RunEffect(kExpand, source.Get(), target.Get(), result);
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
        EXPECT_EQ(FrameCount(kExpand, 640, 480), frames) << step;
    }
}

} // namespace
} // namespace lumafold::test
