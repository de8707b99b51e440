#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

/// The frames with seams of `step` percent and a scatter of `size`, over two busy pictures.
void Scatter(const char* name, CanvasSize canvas, std::uint32_t size, std::uint32_t step,
             EffectResult& result) {
    pluginSettings.TransitionSparkleSize = size;
    pluginSettings.TransitionSparkleStep = step;
    RunEffect(RowNamed(name), BusyPicture(canvas.width, canvas.height, 1).Get(),
              BusyPicture(canvas.width, canvas.height, 2).Get(), result);
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
    for (const CanvasSize canvas : kOddSizes) {
        for (const char* name : {"Backscatter (horizontal)", "Backscatter (vertical)"}) {
            const bool vertical = name[13] == 'v';
            for (const int size : {1, 3, 10, 60}) {
                SCOPED_TRACE(testing::Message() << name << ' ' << canvas.width << ' ' << size);
                EffectResult bare, result;
                Scatter(name, canvas, 0, 8, bare);
                Scatter(name, canvas, static_cast<std::uint32_t>(size), 8, result);
                ASSERT_EQ(bare.Count(), 1 + 1 + 12 + 1);
                ASSERT_EQ(result.Count(), bare.Count());
                Random random(pluginSettings.RandomSeed);
                for (std::int32_t i = 1; i < bare.Count(); ++i) {
                    const int last = (vertical ? canvas.height : canvas.width) + 8;
                    const int seam = i == 1 ? -8 : i == 14 ? last : canvas.height * 8 * (i - 1) / 100;
                    PlainScatter(LockedDib(bare.Image(i)).Get(), vertical, seam, size, random);
                    ASSERT_EQ(DibChecksum(result.Image(i)), DibChecksum(bare.Image(i))) << i;
                }
            }
        }
    }
}

TEST(Backscatter, PushesBehindAFiveLineSeam) {
    const SettingsGuard guard;
    pluginSettings.TransitionSparkleColor = 0xFF33CC;
    const OwnedDib source = BusyPicture(9, 20, 1), target = BusyPicture(9, 20, 2);
    EffectResult down, right, wide;
    Scatter("Backscatter (vertical)", {9, 20}, 0, 30, down);
    ASSERT_EQ(down.Count(), 1 + 1 + 3 + 1);
    const PixelValue kLine[] = {0x3F0C33, 0x7F1966, 0xFF33CC, 0x7F1966, 0x3F0C33};
    for (std::int32_t y = 0; y < 20; ++y) { // 30 %: six rows of the target
        const PixelValue pushed = y < 6 ? PixelAt(target.Get(), 4, 14 + y) : PixelAt(source.Get(), 4, y - 6);
        EXPECT_EQ(PixelAt(down.Image(2), 4, y), y >= 4 && y <= 8 ? kLine[y - 4] : pushed) << y;
    }
    ExpectSamePicture(down.Image(1), source.Get());
    ExpectSamePicture(down.Image(5), target.Get());

    // On a tall picture 60 % of the height is more than the width: the first columns are never written.
    Scatter("Backscatter (horizontal)", {9, 20}, 0, 30, right);
    for (std::int32_t x = 0; x < 9; ++x) {
        EXPECT_EQ(PixelAt(right.Image(3), x, 7), x < 3 ? 0U : PixelAt(target.Get(), x - 3, 7)) << x;
    }
    // On a wide picture the push stops short of the edge; with a step of 2 the first seam's outer line shows.
    const OwnedDib from = BusyPicture(20, 10, 1), to = BusyPicture(20, 10, 2);
    Scatter("Backscatter (horizontal)", {20, 10}, 0, 2, wide);
    ASSERT_EQ(wide.Count(), 1 + 1 + 49 + 1);
    EXPECT_EQ(PixelAt(wide.Image(1), 0, 9), 0x3F0C33U);
    EXPECT_EQ(PixelAt(wide.Image(1), 1, 9), PixelAt(from.Get(), 1, 9));
    for (std::int32_t x = 0; x < 20; ++x) {
        EXPECT_EQ(PixelAt(wide.Image(51), x, 9), PixelAt(x < 10 ? to.Get() : from.Get(), (x + 10) % 20, 9));
    }
    pluginSettings.TransitionSparkleSize = 10001;
    EXPECT_EQ(FrameCount(RowNamed("Backscatter (vertical)"), 7, 5), 0);
}

} // namespace
} // namespace lumafold::test
