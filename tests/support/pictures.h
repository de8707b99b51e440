// Pictures for tests: busy ones, in which a wrong pixel shows, and runs of one effect over two of them.
#pragma once

#include <functional>

#include "image/frame_list.h"
#include "platform/runner.h"
#include "settings/settings.h"

namespace lumafold::test {

/// A picture of `pixel(x, y)`, from the top, row by row.
OwnedDib PictureOf(std::int32_t width, std::int32_t height, int bits,
                   const std::function<PixelValue(int x, int y)>& pixel, const Palette* palette = nullptr);
/// 24 bits of noise over gradients, the same for the same arguments on every platform.
OwnedDib BusyPicture(std::int32_t width, std::int32_t height, std::uint32_t seed);
/// Noise at any depth, with a palette of its own up to 8 bits.
OwnedDib NoisePicture(std::int32_t width, std::int32_t height, int bits, std::uint32_t seed);
/// One colour at 24 bits.
OwnedDib PlainPicture(std::int32_t width, std::int32_t height, PixelValue colour);

/// What one row of the table made of source and target.
struct EffectResult {
    int returned = 0;
    OwnedFrameList frames;

    std::int32_t Count() { return frames->count; }
    DibHandle Image(std::int32_t index);
    std::int32_t Delay(std::int32_t index);
};
inline constexpr std::int32_t kTestPause = 77;
inline constexpr std::int32_t kTestDelay = 9;
void RunEffect(int row, const PluginSettings& settings, const OwnedDib& source, const OwnedDib& target,
               EffectResult& result, std::int32_t delay = kTestDelay, const Runner& runner = Runner());

/// A pixel by its definition.
PixelValue PixelAt(DibHandle picture, std::int32_t x, std::int32_t y);

} // namespace lumafold::test
