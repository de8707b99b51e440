// The files as drawn: what the resource compiler and the dialogs rely on.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "codecs/decode.h"
#include "tests/support/checksum.h"

namespace lumafold {
namespace {

const std::string kFolder = LUMAFOLD_RESOURCES_DIR "/art/";

using Bytes = std::vector<unsigned char>;

OwnedDib Bitmap(const std::string& name, std::int32_t width, std::int32_t height, int bits) {
    DecodedPicture read = DecodePictureFile(kFolder + name, 0, 1 << 20);
    const OwnedDib& dib = read.picture;
    EXPECT_TRUE(dib && dib->biWidth == width && dib->biHeight == height && dib->biBitCount == bits)
        << name << ": " << read.error;
    return std::move(read.picture);
}

TEST(Art, BitmapsAreWhatTheDialogsExpect) {
    std::set<std::uint64_t> sums;
    for (int frame = 0; frame < 24; ++frame) {
        const std::string name = "logo_" + std::string(frame < 10 ? "0" : "") + std::to_string(frame);
        sums.insert(DibChecksum(Bitmap(name + ".bmp", 50, 49, 24).Get()));
    }
    EXPECT_EQ(sums.size(), 24U) << "the logo stands still";
    const OwnedDib texture = Bitmap("texture.bmp", 200, 250, 8);
    Palette greys;
    ASSERT_EQ(DibGetPalette(*texture, greys), 256);
    double mean = 0;
    for (std::int32_t i = 0; i < 200 * 250; ++i)
        mean += DibGetPixel(*texture, i % 200, i / 200) / double{200 * 250};
    EXPECT_NEAR(mean, 168, 1) << "the dialogs tint it by its middle level";
    for (unsigned level = 0; level < 256; ++level)
        ASSERT_EQ(greys[level], RgbOf(MakeColour(level, level, level)));
}

TEST(Art, CursorAndIconCarryTheirMasks) {
    Bytes bytes;
    const auto at = [&](int place, int size = 1) {
        int value = 0;
        for (int i = size; i-- > 0;)
            value = value << 8 | bytes.at(static_cast<std::size_t>(place + i));
        return value;
    };
    const auto load = [&](const char* name) {
        std::ifstream in(kFolder + name, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    };
    const auto expectImage = [&](int entry, int size) {
        EXPECT_EQ(std::tuple(at(entry), at(entry + 1)), std::tuple(size, size));
        const int image = at(entry + 12, 4), maskStride = (size + 31) / 32 * 4;
        EXPECT_EQ(std::tuple(at(image + 4, 4), at(image + 8, 4), at(image + 14, 2)),
                  std::tuple(size, 2 * size, 32));
        EXPECT_EQ(at(entry + 8, 4), 40 + size * size * 4 + size * maskStride);
        // The mask hides exactly what is at least half opaque.
        for (int i = 0; i < size * size; ++i) {
            const int x = i % size, opaque = at(image + 40 + 4 * i + 3);
            const int byte = image + 40 + size * size * 4 + i / size * maskStride + x / 8;
            ASSERT_EQ(at(byte) >> (7 - x % 8) & 1, opaque < 128) << i;
        }
    };
    load("drag.cur");
    ASSERT_EQ(std::tuple(at(2, 2), at(4, 2)), std::tuple(2, 1));
    expectImage(6, 32);
    const int hotX = at(10, 2), hotY = at(12, 2);
    const auto alpha = [&](int x, int y) { return at(62 + ((31 - y) * 32 + x) * 4 + 3); };
    EXPECT_GE(alpha(hotX, hotY), 128) << "the hot spot is on the tip";
    for (int x = hotX + 2; x < 32; ++x)
        EXPECT_EQ(alpha(x, 0), 0) << "and nothing beside it";

    load("lumafold.ico");
    ASSERT_EQ(std::tuple(at(2, 2), at(4, 2)), std::tuple(1, 7));
    constexpr int kSizes[] = {16, 20, 24, 32, 40, 48, 72};
    for (int i = 0; i < 7; ++i)
        expectImage(6 + 16 * i, kSizes[i]);
}

} // namespace
} // namespace lumafold
