#include "tests/transitions/effect_checks.h"
#include "transitions/backscatter.h"

namespace lumafold::test {
namespace {

/// The scatter by bare numbers; points are counted along and across the seam.
void PlainScatter(DibHeader& frame, bool vertical, int seam, int size, Random& random) {
    const int along = vertical ? frame.biWidth : frame.biHeight;
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

TEST(Backscatter, ScattersInOrderAndDrawsForPointsOutside) {
    for (const CanvasSize canvas : kOddSizes) {
        for (const bool vertical : {true, false}) {
            const auto scatter = vertical ? ScatterSeamVertical : ScatterSeamHorizontal;
            for (const int size : {1, 3, 10, 60}) {
                Random random(7), plain(7);
                for (const int seam : {-8, 0, 3, 47, 69}) {
                    SCOPED_TRACE(testing::Message()
                                 << canvas.width << ' ' << vertical << size << ' ' << seam);
                    OwnedDib frame = BusyPicture(canvas.width, canvas.height, 1);
                    OwnedDib expected = DibCopy(*frame);
                    scatter(*frame, seam, size, 0xFF33CC, random);
                    scatter(*expected, seam, 0, 0xFF33CC, plain); // the seam alone
                    PlainScatter(*expected, vertical, seam, size, plain);
                    ASSERT_NO_FATAL_FAILURE(ExpectSamePicture(*frame, *expected));
                }
            }
        }
    }
}

TEST(Backscatter, PushesBehindAFiveLineSeam) {
    const OwnedDib source = BusyPicture(9, 20, 1), target = BusyPicture(9, 20, 2);
    OwnedDib down = PushWipeVertical(*target, *source, 30);
    Random random(1);
    ScatterSeamVertical(*down, SeamAt(*target, 30), 0, 0xFF33CC, random);
    constexpr PixelValue kLine[] = {0x3F0C33, 0x7F1966, 0xFF33CC, 0x7F1966, 0x3F0C33};
    for (std::int32_t y = 0; y < 20; ++y) { // 30 %: six rows of the target
        const PixelValue pushed = y < 6 ? DibGetPixel(*target, 4, 14 + y) : DibGetPixel(*source, 4, y - 6);
        EXPECT_EQ(DibGetPixel(*down, 4, y), y >= 4 && y <= 8 ? kLine[y - 4] : pushed) << y;
    }
    // 60 % of the height is more than the width: the first columns are never written.
    const OwnedDib right = PushWipeHorizontal(*target, *source, 60);
    for (std::int32_t x = 0; x < 9; ++x)
        EXPECT_EQ(DibGetPixel(*right, x, 7), x < 3 ? 0U : DibGetPixel(*target, x - 3, 7)) << x;
}

} // namespace
} // namespace lumafold::test
