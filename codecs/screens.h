// The screens of an animation file, one after the other, as the decoders of the single formats show them.
// Inside this room only.
#pragma once

#include <functional>
#include <vector>

#include "codecs/decode_common.h"

namespace lumafold {

/// What is seen: 0x00BBGGRR row by row from the top, kNoPixel where nothing has been drawn.
struct ShownScreen {
    std::int32_t width = 0, height = 0;
    std::vector<PixelValue> pixels;

    ShownScreen() = default;
    ShownScreen(std::int32_t itsWidth, std::int32_t itsHeight)
        : width(itsWidth), height(itsHeight),
          pixels(static_cast<std::size_t>(itsWidth) * static_cast<std::size_t>(itsHeight), kNoPixel) {}

    /// `act`(pixel, i) for the pixels of a rectangle that lie on the screen, i counting those beside it too.
    template <typename Act>
    void Each(const Rect& rect, Act act) {
        std::size_t i = 0;
        for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
            for (std::int32_t x = rect.left; x < rect.right; ++x, ++i) {
                if (x >= width || y >= height) continue;
                act(pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                           static_cast<std::size_t>(x)],
                    i);
            }
        }
    }
    void Clear(const Rect& rect) {
        Each(rect, [](PixelValue& pixel, std::size_t) { pixel = Cleared(pixel); });
    }
    /// Nothing where there was nothing; white elsewhere, for frames that are laid over each other cannot take
    /// anything away.
    static PixelValue Cleared(PixelValue pixel) { return pixel == kNoPixel ? kNoPixel : 0xFFFFFF; }
};

/// How much a file may unpack to; throws DecodeError when a screen goes beyond.
class ScreenBudget {
public:
    explicit ScreenBudget(std::uint64_t mostPixels) : left_(mostPixels) {}
    void Take(const ShownScreen& screen);

private:
    std::uint64_t left_;
};

/// A screen and how long it is seen, in hundredths of a second.
using OnScreen = std::function<void(const ShownScreen& screen, std::int32_t delay)>;

/// One format each: the comment, "" for none. They throw DecodeError, and std::bad_alloc.
std::string ShowGif(std::span<const std::uint8_t> file, const DecodeLimits& limits, const OnScreen& onScreen);
std::string ShowApng(std::span<const std::uint8_t> file, const DecodeLimits& limits,
                     const OnScreen& onScreen);
std::string ShowMng(std::span<const std::uint8_t> file, const DecodeLimits& limits, const OnScreen& onScreen);

/// Whether a PNG file holds more than a still picture. Throws DecodeError where it is damaged before that.
bool IsAnimatedPng(std::span<const std::uint8_t> file);

} // namespace lumafold
