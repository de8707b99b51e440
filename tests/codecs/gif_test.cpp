#include <gif_lib.h>
#include <gtest/gtest.h>

#include "codecs/animation_reader.h"
#include "codecs/animation_writer.h"
#include "tests/codecs/compose.h"
#include "tests/support/animations.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kMatte = MakeColour(1, 2, 3);

TEST(GifDecoder, KeepsThePaletteAndFillsWithTheMatte) {
    for (const int bits : {1, 2, 3, 4, 7, 8}) {
        for (const bool hole : {false, true}) {
            for (const int frameWidth : {20, 33}) {
                SCOPED_TRACE(std::to_string(bits) + (hole ? " hole " : " ") + std::to_string(frameWidth));
                Animation made = EmptyAnimation(33, 17, bits);
                const unsigned most = 1U << bits;
                const auto index = [&](int x, int y) { return static_cast<unsigned>(x + y * 16) % most; };
                AddFrame(made, {bits, 5, hole ? static_cast<int>(most - 1) : -1, frameWidth, 17}, index);
                std::string error;
                // A matte entry of its own needs a place in the table.
                const unsigned needed = hole || frameWidth == 33 ? most : most + 1;
                ExpectPicture(kMatte, EncodeAnimation(AnimationKind::Gif, made, error), 33, 17,
                              needed > 256  ? 24
                              : needed > 16 ? 8
                              : needed > 2  ? 4
                                            : 1,
                              [&](int x, int y) {
                                  const bool open = x >= frameWidth || (hole && index(x, y) == most - 1);
                                  return open ? RgbOf(kMatte) : made.palette[index(x, y)];
                              });
            }
        }
    }
}

// Written by giflib: interlaced, off the corner, with colours of its own, on a screen told too small.
TEST(GifDecoder, ReadsInterlacedFramesWithLocalColours) {
    std::vector<std::uint8_t> file;
    const auto append = [](GifFileType* to, const GifByteType* bytes, int length) {
        auto& out = *static_cast<std::vector<std::uint8_t>*>(to->UserData);
        out.insert(out.end(), bytes, bytes + length);
        return length;
    };
    GifFileType* gif = EGifOpen(&file, append, nullptr);
    GifColorType colours[4] = {{10, 0, 0}, {0, 20, 0}, {0, 0, 30}, {40, 40, 40}};
    ColorMapObject* map = GifMakeMapObject(4, colours);
    EGifPutScreenDesc(gif, 10, 4, 8, 0, nullptr);
    EGifPutImageDesc(gif, 2, 3, 9, 13, true, map);
    const auto index = [](int x, int y) { return static_cast<GifPixelType>((x + y * y) % 4); };
    for (const auto& [first, step] : {std::pair{0, 8}, {4, 8}, {2, 4}, {1, 2}}) {
        for (int y = first; y < 13; y += step) {
            for (int x = 0; x < 9; ++x)
                EGifPutPixel(gif, index(x, y));
        }
    }
    GifFreeMapObject(map);
    EGifCloseFile(gif, nullptr);
    ExpectPicture(kMatte, file, 11, 16, 4, [&](int x, int y) {
        if (x < 2 || y < 3) return RgbOf(kMatte);
        const GifColorType& c = colours[index(x - 2, y - 3)];
        return Rgb{c.Red, c.Green, c.Blue};
    });
    const ReadAnimation read = DecodeAnimation(file, 1 << 20);
    ASSERT_TRUE(read.animation) << read.error;
    EXPECT_EQ(std::pair(read.animation->width, read.animation->height), std::pair(11, 16));
}

} // namespace
} // namespace lumafold::test
