#include "tests/support/pictures.h"

#include "transitions/random.h"
#include "transitions/table.h"

namespace lumafold::test {

OwnedDib BusyPicture(std::int32_t width, std::int32_t height, std::uint32_t seed) {
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    Random random(seed);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const std::uint32_t noise = random.Draw() >> 8;
            const auto ramp = [&](std::int32_t at, std::int32_t size, unsigned shift) {
                return static_cast<unsigned>(at * 200 / size) + ((noise >> shift) & 0x37);
            };
            DibSetPixel(
                *picture, x, y,
                MakeColour(ramp(x, width, 0), ramp(y, height, 6), ramp(width - x + y, width + height, 12)));
        }
    }
    return picture;
}

OwnedDib NoisePicture(std::int32_t width, std::int32_t height, int bits, std::uint32_t seed) {
    Random random(seed);
    Palette palette;
    for (Rgb& entry : palette) {
        const std::uint32_t v = random.Draw();
        entry = {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
                 static_cast<std::uint8_t>(v >> 16)};
    }
    OwnedDib picture = DibCreate(width, height, bits <= 8 ? &palette : nullptr, bits);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const PixelValue value = random.Draw() >> 4;
            DibSetPixel(*picture, x, y, bits <= 8 ? value & ((1U << bits) - 1) : value & 0xFFFFFF);
        }
    }
    return picture;
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
    context.carryWord = 1;
    context.paletteBits = 8;
    context.frames = &*result.frames;
    result.returned = TransitionTable[static_cast<std::size_t>(row)].effect(context, settings, runner);
}

PixelValue PixelAt(DibHandle picture, std::int32_t x, std::int32_t y) {
    const ReadDib dib(picture);
    return dib ? DibGetPixel(*dib, x, y) : kNoPixel;
}

} // namespace lumafold::test
