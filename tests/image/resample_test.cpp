#include "image/resample.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "tests/support/checksum.h"
#include "tests/support/colours.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Line = std::vector<std::array<int, 3>>;

/// The definition, on one line of pixels in three channels; `beyond` pixels past the end read as white.
Line StretchedLine(const Line& from, int percent, int beyond) {
    const int length = static_cast<int>(from.size());
    const int newLength = length * percent / 100;
    const int q = percent + percent / 100 + (percent % 100 != 0);
    Line to(static_cast<std::size_t>(newLength));
    const auto at = [&](int i) {
        return i < length ? from[static_cast<std::size_t>(i)] : std::array{255, 255, 255};
    };
    to[0] = from[0];
    for (int i = 1, previous = 0; i <= length - 1 + beyond; ++i) {
        const int position = i * q / 100, n = position - previous;
        for (int k = 0; k < n && previous + k < newLength; ++k) {
            for (std::size_t c = 0; c < 3; ++c) {
                to[static_cast<std::size_t>(previous + k)][c] =
                    (n - k - 1) * at(i - 1)[c] / n + (k + 1) * at(i)[c] / n;
            }
        }
        if (position < newLength && i < length) to[static_cast<std::size_t>(position)] = at(i);
        previous = position;
    }
    to.back() = from.back();
    return to;
}

Line ShrunkLine(const Line& from, int percent) {
    Line to(from.size() * static_cast<std::size_t>(percent) / 100);
    std::size_t next = 0;
    for (std::size_t x = 0; x < to.size(); ++x) {
        const std::size_t end = (x + 1) * 100 / static_cast<std::size_t>(percent);
        std::array<int, 3> sum{};
        int taken = 0;
        for (std::size_t i = next; i < end && i < from.size(); ++i, ++taken) {
            for (std::size_t c = 0; c < 3; ++c)
                sum[c] += from[i][c];
        }
        for (std::size_t c = 0; c < 3; ++c)
            to[x][c] = sum[c] / std::max(taken, 1);
        next = end;
    }
    return to;
}

Line LineOf(std::int32_t length, const std::function<PixelValue(std::int32_t)>& pixel) {
    Line line;
    for (std::int32_t i = 0; i < length; ++i) {
        const PixelValue v = pixel(i);
        line.push_back(
            {static_cast<int>(RedOf(v)), static_cast<int>(GreenOf(v)), static_cast<int>(BlueOf(v))});
    }
    return line;
}

TEST(Resample, PassesAreTheDefinition) {
    struct Pass {
        OwnedDib (*run)(const DibHeader&, std::int32_t);
        bool wide, stretch;
    };
    const Pass passes[] = {{DibStretchWidth, true, true},
                           {DibShrinkWidth, true, false},
                           {DibStretchHeight, false, true},
                           {DibShrinkHeight, false, false}};
    for (const Pass& pass : passes) {
        for (const int percent : {1, 13, 49, 50, 51, 99, 101, 150, 200, 333, 20000, 20001}) {
            if (pass.stretch != (percent > 100)) continue;
            constexpr std::array<int, 3> kShapes[] = {{1, 1, 24},   {7, 5, 24}, {33, 1, 24}, {1, 33, 24},
                                                      {61, 47, 24}, {7, 5, 32}, {33, 21, 32}};
            for (const auto& [width, height, bits] : kShapes) {
                if (percent > 1000 && width * height > 40) continue;
                SCOPED_TRACE(testing::Message() << bits << " bits " << width << "x" << height
                                                << (pass.wide ? " width " : " height ") << percent);
                const OwnedDib source =
                    bits == 24 ? BusyPicture(width, height, 3) : NoisePicture(width, height, bits, 3);
                const OwnedDib result = pass.run(*source, percent);
                ASSERT_TRUE(result);
                EXPECT_EQ(result->biWidth, pass.wide ? width * percent / 100 : width);
                EXPECT_EQ(result->biHeight, pass.wide ? height : height * percent / 100);
                for (std::int32_t at = 0; at < (pass.wide ? height : width); ++at) {
                    const auto pixelOf = [&](const OwnedDib& dib) {
                        return [&dib, at, wide = pass.wide](std::int32_t i) {
                            return wide ? DibGetPixel(*dib, i, at) : DibGetPixel(*dib, at, i);
                        };
                    };
                    const Line line = LineOf(pass.wide ? width : height, pixelOf(source));
                    // The height pass looks one pixel further than the width pass.
                    const Line expected = pass.stretch ? StretchedLine(line, percent, pass.wide ? 0 : 1)
                                                       : ShrunkLine(line, percent);
                    const std::int32_t length = pass.wide ? result->biWidth : result->biHeight;
                    ASSERT_EQ(LineOf(length, pixelOf(result)), expected) << "at " << at;
                }
            }
        }
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
