// How effects are held to their definitions: frame by frame against a plain one, pixel by pixel through the
// accessors, on sizes with odd edges.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "numbers/portable_math.h"
#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/compositing.h"
#include "transitions/random.h"
#include "transitions/table.h"

namespace lumafold::test {

inline constexpr CanvasSize kOddSizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
inline constexpr double kPi = 3.14159265358979323846;

inline int RowNamed(std::string_view name) {
    int row = 0;
    while (TransitionTable[static_cast<std::size_t>(row)].name != name)
        ++row;
    return row;
}

/// A 24-bit picture of `pixel(x, y)`.
template <typename Pixel>
OwnedDib Picture(std::int32_t width, std::int32_t height, Pixel pixel) {
    return PictureOf(width, height, 24, pixel);
}

/// Two colours by the share of b in 255, both products truncated.
inline PixelValue PlainMix(PixelValue a, PixelValue b, unsigned share) {
    const auto mix = [share](unsigned from, unsigned to) {
        return to * share / 255 + from * (255 - share) / 255;
    };
    return MakeColour(mix(RedOf(a), RedOf(b)), mix(GreenOf(a), GreenOf(b)), mix(BlueOf(a), BlueOf(b)));
}

inline void ExpectSamePicture(const DibHeader& a, const DibHeader& b) {
    ASSERT_TRUE(a.biWidth == b.biWidth && a.biHeight == b.biHeight && a.biBitCount == b.biBitCount);
    for (std::int32_t x = 0, y = 0; y < b.biHeight; x = (x + 1) % b.biWidth, y += x == 0)
        ASSERT_EQ(DibGetPixel(a, x, y), DibGetPixel(b, x, y)) << x << ", " << y;
}

/// Runs a row over two busy pictures; frame i of 1 .. must be `expected(i, source, target)`, an OwnedDib.
template <typename Expected>
void ExpectFrames(const char* name, const PluginSettings& settings, CanvasSize size, Expected expected) {
    const OwnedDib source = BusyPicture(size.width, size.height, 3),
                   target = BusyPicture(size.width, size.height, 4);
    EffectResult result;
    RunEffect(RowNamed(name), settings, source, target, result);
    ASSERT_EQ(result.returned, 1);
    ASSERT_EQ(result.Count(), FrameCount(RowNamed(name), settings, size));
    for (std::int32_t i = 1; i < result.Count(); ++i) {
        SCOPED_TRACE(testing::Message()
                     << name << ' ' << size.width << 'x' << size.height << ", frame " << i);
        const OwnedDib plain = expected(i, *source, *target);
        const ReadDib frame(result.Image(i));
        ASSERT_NO_FATAL_FAILURE(ExpectSamePicture(*frame, *plain));
    }
}

} // namespace lumafold::test
