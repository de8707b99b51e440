#include "tests/support/pictures.h"

#include <cstring>

#include <gtest/gtest.h>

#include "transitions/random.h"
#include "transitions/table.h"

namespace lumafold::test {

OwnedDib PictureOf(std::int32_t width, std::int32_t height, int bits,
                   const std::function<PixelValue(int x, int y)>& pixel, const Palette* palette) {
    OwnedDib picture = DibCreate(width, height, palette, bits);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x)
            DibSetPixel(*picture, x, y, pixel(x, y));
    }
    return picture;
}

OwnedDib BusyPicture(std::int32_t width, std::int32_t height, std::uint32_t seed) {
    Random random(seed);
    return PictureOf(width, height, 24, [&](int x, int y) {
        const std::uint32_t noise = random.Draw() >> 8;
        const auto ramp = [&](std::int32_t at, std::int32_t size, unsigned shift) {
            return static_cast<unsigned>(at * 200 / size) + ((noise >> shift) & 0x37);
        };
        return MakeColour(ramp(x, width, 0), ramp(y, height, 6), ramp(width - x + y, width + height, 12));
    });
}

OwnedDib NoisePicture(std::int32_t width, std::int32_t height, int bits, std::uint32_t seed) {
    Random random(seed);
    Palette palette;
    for (Rgb& entry : palette)
        entry = RgbOf(random.Draw());
    const PixelValue mask = bits <= 8 ? (1U << bits) - 1 : 0xFFFFFF;
    return PictureOf(
        width, height, bits, [&](int, int) { return random.Draw() >> 4 & mask; },
        bits <= 8 ? &palette : nullptr);
}

OwnedDib PlainPicture(std::int32_t width, std::int32_t height, PixelValue colour) {
    return DibCreateFlat(width, height, colour);
}

DibHandle EffectResult::Image(std::int32_t index) {
    FrameRecord record{};
    return FrameListGet(*frames, index, record) ? record.image : 0;
}

std::int32_t EffectResult::Delay(std::int32_t index) {
    FrameRecord record{};
    return FrameListGet(*frames, index, record) ? record.delay : -1;
}

void RunEffect(int row, const PluginSettings& settings, const OwnedDib& source, const OwnedDib& target,
               EffectResult& result, std::int32_t delay, const Runner& runner) {
    TransitionContext context{};
    context.transition = row;
    context.pause = kTestPause;
    context.delay = delay;
    context.image = source.Get();
    context.nextImage = target.Get();
    context.previousImage = target.Get();
    context.carryWord = 0x12345678;
    context.paletteBits = 8;
    context.frames = &*result.frames;
    const TransitionContext before = context;
    result.returned = TransitionTable[static_cast<std::size_t>(row)].effect(context, settings, runner);
    EXPECT_EQ(std::memcmp(&context, &before, sizeof(context)), 0)
        << "what one effect leaves is the next one's";
}

PixelValue PixelAt(DibHandle picture, std::int32_t x, std::int32_t y) {
    const ReadDib dib(picture);
    return dib ? DibGetPixel(*dib, x, y) : kNoPixel;
}

} // namespace lumafold::test
