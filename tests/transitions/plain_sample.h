// Bent pictures by their plain definition, pixel by pixel through the accessors, to hold the fast ones
// against.
#pragma once

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/transitions/effect_checks.h"
#include "transitions/compositing.h"

namespace lumafold::test {

inline constexpr double kPi = 3.14159265358979323846;

struct PlainPoint {
    double u, v;
};

inline double Unit(double x) { return std::min(std::max(x, 0.0), 1.0); }
inline double Channel(PixelValue pixel, int c) { return static_cast<double>((pixel >> (8 * c)) & 0xFF); }

/// The average colour of the points of one pixel.
inline PixelValue PlainSample(const DibHeader* picture, const std::vector<PlainPoint>& points,
                              PixelValue matte) {
    const double width = picture->biWidth, height = picture->biHeight;
    double sums[3] = {};
    for (const auto [u, v] : points) {
        const double coverage = Unit(std::min(u, width - u) + 1) * Unit(std::min(v, height - v) + 1);
        const double x = std::min(std::max(u - 0.5, 0.0), width - 1),
                     y = std::min(std::max(v - 0.5, 0.0), height - 1);
        const int left = static_cast<int>(x), top = static_cast<int>(y);
        const int right = std::min(left + 1, picture->biWidth - 1),
                  bottom = std::min(top + 1, picture->biHeight - 1);
        for (int c = 0; c < 3; ++c) {
            const auto at = [&](int column, int row) {
                return Channel(DibGetPixel(picture, column, row), c);
            };
            const double upper = at(left, top) + (at(right, top) - at(left, top)) * (x - left);
            const double lower = at(left, bottom) + (at(right, bottom) - at(left, bottom)) * (x - left);
            sums[c] += coverage * (upper + (lower - upper) * (y - top)) + (1 - coverage) * Channel(matte, c);
        }
    }
    const auto level = [&](int c) {
        const double rounded = sums[c] / static_cast<double>(points.size()) + 0.5;
        return static_cast<unsigned>(rounded);
    };
    return MakeColour(level(0), level(1), level(2));
}

/// A 24-bit picture of `pixel(x, y)`.
template <typename Pixel>
OwnedDib Picture(std::int32_t width, std::int32_t height, Pixel pixel) {
    OwnedDib result(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(result.Get());
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            DibSetPixel(dib.Get(), x, y, pixel(x, y));
        }
    }
    return result;
}

/// Red tells a pixel's column, green its row: sizes up to 255.
inline OwnedDib MapPicture(std::int32_t width, std::int32_t height) {
    return Picture(width, height, [](std::int32_t x, std::int32_t y) {
        return MakeColour(static_cast<unsigned>(x), static_cast<unsigned>(y), 0);
    });
}

/// Runs a row over two busy pictures; frame i of 1 .. must be `expected(i, source, target)`, an OwnedDib.
template <typename Expected>
void ExpectFrames(int row, std::int32_t width, std::int32_t height, Expected expected) {
    SCOPED_TRACE(testing::Message() << TransitionTable[static_cast<std::size_t>(row)].name << ' ' << width
                                    << 'x' << height);
    const OwnedDib source = BusyPicture(width, height, 3), target = BusyPicture(width, height, 4);
    EffectResult result;
    RunEffect(row, source.Get(), target.Get(), result);
    ASSERT_EQ(result.returned, 1);
    ASSERT_EQ(result.Count(), FrameCount(row, width, height));
    EXPECT_EQ(DibChecksum(result.Image(0)), DibChecksum(source.Get()));
    EXPECT_EQ(result.Delay(0), kTestPause);
    const LockedDib from(source.Get()), to(target.Get());
    for (std::int32_t i = 1; i < result.Count(); ++i) {
        const OwnedDib plain = expected(i, from.Get(), to.Get());
        ASSERT_EQ(DibChecksum(result.Image(i)), DibChecksum(plain.Get())) << "frame " << i;
    }
}

} // namespace lumafold::test
