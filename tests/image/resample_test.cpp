#include "image/resample.h"

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/colours.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

/// Sums of all results of a pass; only small pictures grow more than tenfold.
TEST(Resample, PassesGiveTheSameEverywhere) {
    const struct {
        OwnedDib (*run)(const DibHeader&, std::int32_t);
        bool wide, stretch;
        std::uint64_t sum;
    } passes[] = {{DibStretchWidth, true, true, 0x5FE1881C6FC8CDB3},
                  {DibShrinkWidth, true, false, 0x2B9C0445013D121B},
                  {DibStretchHeight, false, true, 0xD2AF352BC7026BF5},
                  {DibShrinkHeight, false, false, 0x9EBE49760F624326}};
    for (const auto& [run, wide, stretch, expected] : passes) {
        Checksum sum;
        for (const int percent : {1, 13, 49, 50, 51, 99, 101, 150, 200, 333, 20000, 20001}) {
            if (stretch != (percent > 100)) continue;
            constexpr std::array<int, 3> kShapes[] = {{1, 1, 24},   {7, 5, 24}, {33, 1, 24}, {1, 33, 24},
                                                      {61, 47, 24}, {7, 5, 32}, {33, 21, 32}};
            for (const auto& [width, height, bits] : kShapes) {
                if (percent > 1000 && width * height > 40) continue;
                const OwnedDib result = run(*NoisePicture(width, height, bits, 3), percent);
                ASSERT_TRUE(result);
                EXPECT_EQ(result->biWidth, wide ? width * percent / 100 : width);
                EXPECT_EQ(result->biHeight, wide ? height : height * percent / 100);
                sum.Add(*result);
            }
        }
        EXPECT_EQ(sum.Value(), expected) << wide << ' ' << stretch << std::hex << " 0x" << sum.Value();
    }
}

TEST(Resample, PalettePicturesScaleTheirValuesAsNumbers) {
    OwnedDib indexed = DibCreate(4, 1, nullptr, 8);
    for (std::int32_t x = 0; x < 4; ++x)
        DibSetPixel(*indexed, x, 0, static_cast<PixelValue>(10 + 5 * x));
    const OwnedDib half = DibShrinkWidth(*indexed, 50), taller = DibStretchHeight(*indexed, 300);
    EXPECT_EQ(DibGetPixel(*half, 0, 0), 12U);
    EXPECT_EQ(DibGetPixel(*half, 1, 0), 22U);
    // Below the picture there is no pixel, the number -1: its last mix is not written.
    for (const auto& [y, value] : {std::pair{0, 6U}, {1, 3U}, {2, 10U}})
        EXPECT_EQ(DibGetPixel(*taller, 0, y), value) << y;
}

TEST(Resample, ScaleTakesWidthFirstAndFreesWhatItMade) {
    const OwnedDib source = BusyPicture(61, 47, 8);
    const OwnedDib scaled = DibScale(*source, 150, 50);
    const OwnedDib both = DibShrinkHeight(*DibStretchWidth(*source, 150), 50);
    EXPECT_EQ(DibChecksum(scaled.Get()), DibChecksum(both.Get()));
    EXPECT_EQ(DibChecksum(DibScale(*source, 100, 100).Get()), DibChecksum(source.Get()));
    const auto scale = [&] { return DibScale(*source, 150, 50); };
    EXPECT_EQ(FailEachAllocation(scale, [](const OwnedDib& made, bool missed) { EXPECT_EQ(!made, missed); }),
              4);
    EXPECT_FALSE(DibScale(*source, 0x7FFFFFFF, 100));
    EXPECT_FALSE(DibScale(*source, 0, -5));
}

TEST(Resample, TrueColourTakesThePalette) {
    for (const int bits : {1, 4, 8, 24}) {
        const OwnedDib source = NoisePicture(33, 5, bits, 9), colour = DibToTrueColour(*source);
        EXPECT_EQ(colour->biBitCount, 24);
        for (std::int32_t i = 0; i < 33 * 5; ++i)
            ASSERT_EQ(RgbOf(DibGetPixel(*colour, i % 33, i / 33)), ColourAt(*source, i % 33, i / 33));
    }
}

TEST(Resample, CropPaintsTheOutside) {
    for (const int bits : {1, 4, 8, 24}) {
        const OwnedDib source = NoisePicture(7, 5, bits, 4);
        for (const Rect rect :
             {Rect{-2, -2, 9, 8}, Rect{1, 1, 5, 4}, Rect{3, 2, 40, 3}, Rect{-9, -9, -3, -3}}) {
            for (const PixelValue fill : {0U, 1U}) {
                const OwnedDib cut = DibCropRect(*source, rect, fill);
                for (std::int32_t y = 0; y < RectHeight(rect); ++y) {
                    for (std::int32_t x = 0; x < RectWidth(rect); ++x) {
                        const PixelValue v = DibGetPixel(*source, rect.left + x, rect.top + y);
                        ASSERT_EQ(DibGetPixel(*cut, x, y), v == kNoPixel ? fill : v);
                    }
                }
            }
        }
        EXPECT_FALSE(DibCropRect(*source, {5, 0, 4, 1}, 0));
        EXPECT_FALSE(DibCropRect(*source, {INT32_MIN, 0, INT32_MAX, 1}, 0));
    }
}

TEST(Resample, FitsIntoABoxWithoutEnlarging) {
    EXPECT_EQ(FitPercent(1000, 100, 288, 88), 28);
    EXPECT_EQ(FitPercent(50, 20, 288, 88), 100);
    EXPECT_EQ(FitPercent(100, 400, 288, 88), 22);
    EXPECT_EQ(FitOffset(288, 279), 4);
    EXPECT_EQ(FitOffset(88, 100), 0);
}

} // namespace
} // namespace lumafold::test
