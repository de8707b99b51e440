// The files as drawn: what the resource compiler and the dialogs rely on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "codecs/decode.h"
#include "image/row_view.h"

namespace lumafold {
namespace {

const std::string kFolder = LUMAFOLD_RESOURCES_DIR "/art/";

OwnedDib Bitmap(const std::string& name, std::int32_t width, std::int32_t height, int bits) {
    DecodedPicture read = DecodePictureFile(kFolder + name, 0, 1 << 20);
    EXPECT_EQ(read.error, "") << name;
    const LockedDib dib(read.picture.Get());
    EXPECT_TRUE(dib && dib->biWidth == width && dib->biHeight == height && dib->biBitCount == bits) << name;
    return std::move(read.picture);
}

using Bytes = std::vector<unsigned char>;

TEST(Art, LogoTurnsWithoutAJump) {
    constexpr int kFrames = 24, kWidth = 50, kHeight = 49;
    std::vector<Bytes> frames;
    for (int frame = 0; frame < kFrames; ++frame) {
        const std::string name = "logo_" + std::string(frame < 10 ? "0" : "") + std::to_string(frame);
        const OwnedDib picture = Bitmap(name + ".bmp", kWidth, kHeight, 24);
        const GlobalLocked<std::uint8_t> block(picture.Get());
        ASSERT_TRUE(block);
        frames.emplace_back(block.Get() + 40, block.Get() + 40 + 152 * kHeight);
    }
    EXPECT_EQ(std::set<Bytes>(frames.begin(), frames.end()).size(), frames.size());

    std::vector<long> steps;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const Bytes &now = frames[i], &next = frames[(i + 1) % frames.size()];
        long sum = 0;
        for (std::size_t at = 0; at < now.size(); ++at)
            sum += std::abs(now[at] - next[at]);
        steps.push_back(sum);
    }
    const long closing = steps.back();
    std::sort(steps.begin(), steps.end());
    EXPECT_LT(steps.back(), 2 * steps[kFrames / 2]) << "some frame jumps";
    EXPECT_LE(closing, 3 * steps[kFrames / 2] / 2) << "the loop does not close";
}

TEST(Art, TextureIsQuietAndHasNoSeam) {
    constexpr int kWidth = 200, kHeight = 250;
    const OwnedDib texture = Bitmap("texture.bmp", kWidth, kHeight, 8);
    const LockedDib dib(texture.Get());
    Palette greys;
    ASSERT_EQ(DibGetPalette(*dib, greys), 256);
    for (std::size_t level = 0; level < 256; ++level) {
        const auto grey = static_cast<std::uint8_t>(level);
        ASSERT_EQ(greys[level], (Rgb{grey, grey, grey}));
    }
    // Mean difference between neighbouring columns and rows; the last ones reach across the seam.
    const auto at = [&](int x, int y) {
        return static_cast<int>(DibGetPixel(*dib, x % kWidth, y % kHeight));
    };
    std::vector<double> columns(kWidth), rows(kHeight);
    int darkest = 255, lightest = 0;
    double mean = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            columns[static_cast<std::size_t>(x)] += std::abs(at(x, y) - at(x + 1, y)) / double{kHeight};
            rows[static_cast<std::size_t>(y)] += std::abs(at(x, y) - at(x, y + 1)) / double{kWidth};
            darkest = std::min(darkest, at(x, y));
            lightest = std::max(lightest, at(x, y));
            mean += at(x, y) / double{kWidth * kHeight};
        }
    }
    EXPECT_LE(columns.back(), *std::max_element(columns.begin(), columns.end() - 1));
    EXPECT_LE(rows.back(), *std::max_element(rows.begin(), rows.end() - 1));
    EXPECT_NEAR(mean, 168, 1) << "the dialogs tint it by its middle level";
    EXPECT_LT(lightest - darkest, 60) << "text must stand out";
    EXPECT_GT(lightest - darkest, 16) << "no paper to be seen";
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
    int entry = 6;
    for (const int size : {16, 20, 24, 32, 40, 48, 72}) {
        expectImage(entry, size);
        entry += 16;
    }
}

} // namespace
} // namespace lumafold
