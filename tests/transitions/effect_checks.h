// How effects are held to their definitions: frame by frame against a plain one, on sizes with odd edges.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "tests/support/pictures.h"
#include "transitions/effects.h"

namespace lumafold::test {

inline constexpr CanvasSize kOddSizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
inline constexpr std::uint32_t kMostNumber = 0xFFFFFFFF;

inline int RowNamed(std::string_view name) {
    int row = 0;
    while (TransitionTable[static_cast<std::size_t>(row)].name != name) {
        ++row;
    }
    return row;
}

/// Two busy pictures and what a row makes of them.
struct BusyRun {
    OwnedDib source, target;
    EffectResult result;

    BusyRun(const char* name, CanvasSize size)
        : source(BusyPicture(size.width, size.height, 1)), target(BusyPicture(size.width, size.height, 2)) {
        RunEffect(RowNamed(name), source.Get(), target.Get(), result);
    }
};

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
/// Frames of a row that takes a black picture to a white one.
struct BlackToWhite {
    OwnedDib source, target;
    EffectResult result;

    BlackToWhite(const char* name, CanvasSize size)
        : source(PlainPicture(size.width, size.height, 0)),
          target(PlainPicture(size.width, size.height, 0xFFFFFF)) {
        RunEffect(RowNamed(name), source.Get(), target.Get(), result);
    }
};

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

/// Each value of a setting on a small canvas: the frames announced are the frames made, none where it fails.
inline void ExpectFramesAsCounted(const char* name, std::uint32_t PluginSettings::*setting,
                                  std::initializer_list<std::uint32_t> values) {
    for (const std::uint32_t value : values) {
        const SettingsGuard guard;
        pluginSettings.*setting = value;
        for (const CanvasSize size : {CanvasSize{1, 1}, CanvasSize{7, 5}}) {
            BusyRun run(name, size);
            const std::int64_t made = run.result.returned != 0 ? run.result.Count() : 0;
            EXPECT_EQ(FrameCount(RowNamed(name), size.width, size.height), made) << name << ' ' << value;
        }
    }
}

} // namespace lumafold::test
