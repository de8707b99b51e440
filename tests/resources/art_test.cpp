// The files as drawn, read from their bytes: what the resource compiler and the dialogs rely on.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace lumafold {
namespace {

struct File {
    std::vector<unsigned char> bytes;

    explicit File(const std::string& name) {
        std::ifstream in(std::string(LUMAFOLD_RESOURCES_DIR) + "/art/" + name, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    int Number(std::size_t at, int size) const {
        int value = 0;
        for (int i = size; i-- > 0;)
            value = value << 8 | bytes.at(at + static_cast<std::size_t>(i));
        return value;
    }
    int Level(int x, int y, int width, int height) const {
        const int stride = (width + 3) / 4 * 4, at = Number(10, 4) + (height - 1 - y) * stride + x;
        return bytes.at(static_cast<std::size_t>(at));
    }
};

void ExpectBitmap(const File& file, int width, int height, int bits, std::size_t rows) {
    ASSERT_GT(file.bytes.size(), 54u);
    EXPECT_EQ(std::string(file.bytes.begin(), file.bytes.begin() + 2), "BM");
    EXPECT_EQ(file.Number(2, 4), static_cast<int>(file.bytes.size()));
    EXPECT_EQ(file.bytes.size(), static_cast<std::size_t>(file.Number(10, 4)) + rows);
    EXPECT_EQ(file.Number(14, 4), 40);
    EXPECT_EQ(file.Number(18, 4), width);
    EXPECT_EQ(file.Number(22, 4), height);
    EXPECT_EQ(file.Number(26, 2), 1);
    EXPECT_EQ(file.Number(28, 2), bits);
    EXPECT_EQ(file.Number(30, 4), 0);
}

std::string LogoName(int frame) {
    return std::string("logo_") + (frame < 10 ? "0" : "") + std::to_string(frame) + ".bmp";
}

TEST(Art, LogoTurnsWithoutAJump) {
    constexpr int kFrames = 24, kWidth = 50, kHeight = 49;
    std::vector<File> frames;
    std::set<std::vector<unsigned char>> distinct;
    for (int frame = 0; frame < kFrames; ++frame) {
        frames.emplace_back(LogoName(frame));
        ASSERT_NO_FATAL_FAILURE(ExpectBitmap(frames.back(), kWidth, kHeight, 24, 152 * kHeight)) << frame;
        distinct.insert(frames.back().bytes);
    }
    EXPECT_EQ(distinct.size(), static_cast<std::size_t>(kFrames));

    std::vector<long> steps;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto &now = frames[i].bytes, &next = frames[(i + 1) % frames.size()].bytes;
        long sum = 0;
        for (std::size_t at = 54; at < now.size(); ++at)
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
    const File file("texture.bmp");
    ASSERT_NO_FATAL_FAILURE(ExpectBitmap(file, kWidth, kHeight, 8, kWidth * kHeight));
    ASSERT_EQ(file.Number(10, 4), 54 + 1024);
    for (std::size_t level = 0; level < 256; ++level)
        ASSERT_EQ(file.Number(54 + level * 4, 4), static_cast<int>(level * 0x010101));

    // Mean difference between neighbouring columns and rows; the last ones reach across the seam.
    const auto at = [&](int x, int y) { return file.Level(x % kWidth, y % kHeight, kWidth, kHeight); };
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
    const auto expectImage = [](const File& file, std::size_t entry, int size) {
        EXPECT_EQ(file.Number(entry, 1), size);
        EXPECT_EQ(file.Number(entry + 1, 1), size);
        const auto image = static_cast<std::size_t>(file.Number(entry + 12, 4));
        EXPECT_EQ(file.Number(image + 4, 4), size);
        EXPECT_EQ(file.Number(image + 8, 4), 2 * size);
        EXPECT_EQ(file.Number(image + 14, 2), 32);
        const int maskStride = (size + 31) / 32 * 4;
        EXPECT_EQ(file.Number(entry + 8, 4), 40 + size * size * 4 + size * maskStride);
        // The mask hides exactly what is at least half opaque.
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const int opaque =
                    file.Number(image + 40 + static_cast<std::size_t>((y * size + x) * 4) + 3, 1);
                const auto byte =
                    image + 40 + static_cast<std::size_t>(size * size * 4 + y * maskStride + x / 8);
                ASSERT_EQ(file.Number(byte, 1) >> (7 - x % 8) & 1, opaque < 128) << x << ',' << y;
            }
        }
    };
    const File cursor("drag.cur");
    ASSERT_EQ(cursor.Number(2, 2), 2);
    ASSERT_EQ(cursor.Number(4, 2), 1);
    expectImage(cursor, 6, 32);
    const auto hotX = cursor.Number(10, 2), hotY = cursor.Number(12, 2);
    const auto alpha = [&](int x, int y) {
        const int at = 62 + ((31 - y) * 32 + x) * 4 + 3;
        return cursor.Number(static_cast<std::size_t>(at), 1);
    };
    EXPECT_GE(alpha(hotX, hotY), 128) << "the hot spot is on the tip";
    for (int x = hotX + 2; x < 32; ++x)
        EXPECT_EQ(alpha(x, 0), 0) << "and nothing beside it";

    const File icon("lumafold.ico");
    ASSERT_EQ(icon.Number(2, 2), 1);
    ASSERT_EQ(icon.Number(4, 2), 3);
    expectImage(icon, 6, 16);
    expectImage(icon, 22, 32);
    expectImage(icon, 38, 48);
}

} // namespace
} // namespace lumafold
