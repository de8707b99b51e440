// How effects are held to their definitions: frame by frame against a plain one, on sizes with odd edges.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/pictures.h"
#include "transitions/effects.h"

namespace lumafold::test {

inline constexpr CanvasSize kOddSizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};

inline int RowNamed(std::string_view name) {
    int row = 0;
    while (TransitionTable[static_cast<std::size_t>(row)].name != name) {
        ++row;
    }
    return row;
}

/// What a row makes of two pictures: busy ones, or a black and a white one, whose frames show the mask
/// itself.
struct Rendered {
    OwnedDib source, target;
    EffectResult result;

    Rendered(const char* name, OwnedDib from, OwnedDib to) : source(std::move(from)), target(std::move(to)) {
        RunEffect(RowNamed(name), source.Get(), target.Get(), result);
    }
};
inline Rendered BusyRun(const char* name, CanvasSize size) {
    return {name, BusyPicture(size.width, size.height, 1), BusyPicture(size.width, size.height, 2)};
}
inline Rendered BlackToWhite(const char* name, CanvasSize size) {
    return {name, PlainPicture(size.width, size.height, 0), PlainPicture(size.width, size.height, 0xFFFFFF)};
}

/// A frame as text, a white pixel being '#', a black one '.', any other a '?'; rows end with '/'.
inline std::string Drawing(DibHandle frame) {
    const LockedDib dib(frame);
    std::string text;
    for (std::int32_t y = 0; dib && y < dib->biHeight; ++y) {
        for (std::int32_t x = 0; x < dib->biWidth; ++x) {
            const PixelValue pixel = DibGetPixel(dib.Get(), x, y);
            text += pixel == 0xFFFFFF ? '#' : pixel == 0 ? '.' : '?';
        }
        text += '/';
    }
    return text;
}

inline void ExpectSamePicture(DibHandle picture, DibHandle expected) {
    const LockedDib a(picture), b(expected);
    ASSERT_TRUE(a && b);
    ASSERT_TRUE(a->biWidth == b->biWidth && a->biHeight == b->biHeight && a->biBitCount == b->biBitCount);
    for (std::int32_t y = 0; y < b->biHeight; ++y) {
        for (std::int32_t x = 0; x < b->biWidth; ++x) {
            ASSERT_EQ(DibGetPixel(a.Get(), x, y), DibGetPixel(b.Get(), x, y)) << x << ", " << y;
        }
    }
}

} // namespace lumafold::test
