#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kHorizontal = 6, kVertical = 7;

void Settings(std::uint32_t size, std::uint32_t step) {
    pluginSettings.TransitionSparkleSize = size;
    pluginSettings.TransitionSparkleStep = step;
}

/// The scatter over a picture without scatter, by bare numbers; `points` are counted along and across the
/// seam.
void PlainScatter(DibHeader* frame, bool vertical, int seam, int size, Random& random) {
    const int along = vertical ? frame->biWidth : frame->biHeight;
    for (int i = 0; i < along * 2 * size; ++i) {
        const int x = vertical ? i % along : seam - size + i % (2 * size);
        const int y = vertical ? seam - size + i / along : i / (2 * size);
        const int dx = static_cast<int>(random.Draw()) % size - size / 2;
        const int dy = static_cast<int>(random.Draw()) % size - size / 2;
        if (vertical && std::abs(dy) > size / 4 && random.Draw() % 2 != 0) continue;
        const PixelValue v = DibGetPixel(frame, x, y);
        if (v != kNoPixel) DibSetPixel(frame, x + dx, y + dy, v);
    }
}

TEST(Backscatter, ScattersInOrderOverTheFramesWithoutScatter) {
    const SettingsGuard guard;
    constexpr std::int32_t kSizes[][2] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
    for (const auto& [width, height] : kSizes) {
        const OwnedDib source = BusyPicture(width, height, 5), target = BusyPicture(width, height, 6);
        for (const bool vertical : {false, true}) {
            for (const int size : {1, 3, 10, 60}) {
                EffectResult bare, result;
                Settings(0, 8);
                RunEffect(vertical ? kVertical : kHorizontal, source.Get(), target.Get(), bare);
                Settings(static_cast<std::uint32_t>(size), 8);
                RunEffect(vertical ? kVertical : kHorizontal, source.Get(), target.Get(), result);
                ASSERT_EQ(bare.Count(), 1 + 1 + 12 + 1);
                ASSERT_EQ(result.Count(), bare.Count());
                Random random(pluginSettings.RandomSeed);
                for (std::int32_t i = 1; i < bare.Count(); ++i) {
                    const int last = (vertical ? height : width) + 8;
                    const int seam = i == 1 ? -8 : i == 14 ? last : height * 8 * (i - 1) / 100;
                    PlainScatter(LockedDib(bare.Image(i)).Get(), vertical, seam, size, random);
                    ASSERT_EQ(DibChecksum(result.Image(i)), DibChecksum(bare.Image(i)))
                        << width << "x" << height << ", vertical " << vertical << ", size " << size << ", "
                        << i;
                }
            }
        }
    }
}

TEST(Backscatter, PushesBehindAFiveLineSeam) {
    const SettingsGuard guard;
    Settings(0, 30);
    pluginSettings.TransitionSparkleColor = 0xFF33CC;
    const OwnedDib source = BusyPicture(9, 20, 1), target = BusyPicture(9, 20, 2);
    EffectResult down;
    RunEffect(kVertical, source.Get(), target.Get(), down);
    ASSERT_EQ(down.Count(), 1 + 1 + 3 + 1);
    const PixelValue kLine[] = {0x3F0C33, 0x7F1966, 0xFF33CC, 0x7F1966, 0x3F0C33};
    for (std::int32_t y = 0; y < 20; ++y) { // 30 %: six rows of the target
        const PixelValue pushed = y < 6 ? PixelAt(target.Get(), 4, 14 + y) : PixelAt(source.Get(), 4, y - 6);
        EXPECT_EQ(PixelAt(down.Image(2), 4, y), y >= 4 && y <= 8 ? kLine[y - 4] : pushed) << y;
    }
    EXPECT_EQ(DibChecksum(down.Image(1)), DibChecksum(source.Get()));
    EXPECT_EQ(DibChecksum(down.Image(5)), DibChecksum(target.Get()));

    // On a tall picture 60 % of the height is more than the width: the first columns are never written.
    EffectResult right;
    RunEffect(kHorizontal, source.Get(), target.Get(), right);
    for (std::int32_t x = 0; x < 9; ++x) {
        EXPECT_EQ(PixelAt(right.Image(3), x, 7), x < 3 ? 0U : PixelAt(target.Get(), x - 3, 7)) << x;
    }
}

TEST(Backscatter, SeamsAtTheEnds) {
    const SettingsGuard guard;
    // On a wide picture the push stops short of the edge; with a step of 2 the first seam's outer line shows.
    const OwnedDib source = BusyPicture(20, 10, 1), target = BusyPicture(20, 10, 2);
    EffectResult result;
    Settings(0, 2);
    RunEffect(kHorizontal, source.Get(), target.Get(), result);
    ASSERT_EQ(result.Count(), 1 + 1 + 49 + 1);
    EXPECT_EQ(PixelAt(result.Image(1), 0, 9), 0x3F0C33U);
    EXPECT_EQ(PixelAt(result.Image(1), 1, 9), PixelAt(source.Get(), 1, 9));
    for (std::int32_t x = 0; x < 20; ++x) {
        EXPECT_EQ(PixelAt(result.Image(51), x, 9),
                  x < 10 ? PixelAt(target.Get(), x + 10, 9) : PixelAt(source.Get(), x - 10, 9));
    }
    Settings(10001, 2);
    EXPECT_EQ(FrameCount(kVertical, 7, 5), 0);
}

} // namespace
} // namespace lumafold::test
