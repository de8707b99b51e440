#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "codecs/animation_writer.h"
#include "codecs/decode.h"
#include "codecs/png_rows.h"
#include "codecs/png_writer.h"
#include "tests/codecs/compose.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kMatte = MakeColour(200, 100, 50);
constexpr std::uint64_t kMany = 1 << 20;

struct PngRecipe {
    int width = 0, height = 0, type = 0, depth = 0;
    bool interlaced = false, transparent = false;
    int orientation = 1;
};

/// Channel `c` of the composed picture at its own depth; busy, and with both ends of the scale.
unsigned SampleAt(const PngRecipe& png, int x, int y, int c) {
    const unsigned most = (1U << png.depth) - 1;
    const auto mixed = static_cast<unsigned>(x * 7919 + y * 104729 + c * 40503 + x * y * 257 + x / 3);
    if (x == 0 && y == 0) return 0;
    if (x == 1 && y == 0) return most;
    return mixed & most;
}

int ChannelsOf(int type) {
    return ((type & PNG_COLOR_MASK_COLOR) != 0 && type != PNG_COLOR_TYPE_PALETTE ? 3 : 1) +
           ((type & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
}
Rgb EntryAt(unsigned i) {
    return {static_cast<std::uint8_t>(i * 37), static_cast<std::uint8_t>(255 - i),
            static_cast<std::uint8_t>(i * i)};
}
unsigned EntryAlpha(unsigned i) { return i % 3 == 0 ? 0 : i % 3 == 1 ? 128 : 255; }

void Write(const PngRecipe& recipe, png_structp png, png_infop info) {
    png_set_IHDR(png, info, static_cast<png_uint_32>(recipe.width), static_cast<png_uint_32>(recipe.height),
                 recipe.depth, recipe.type, recipe.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0,
                 0);
    if (recipe.type == PNG_COLOR_TYPE_PALETTE) {
        png_color colours[256];
        png_byte alphas[256];
        const int count = 1 << recipe.depth;
        for (int i = 0; i < count; ++i) {
            const Rgb entry = EntryAt(static_cast<unsigned>(i));
            colours[i] = {entry.red, entry.green, entry.blue};
            alphas[i] = static_cast<png_byte>(EntryAlpha(static_cast<unsigned>(i)));
        }
        png_set_PLTE(png, info, colours, count);
        if (recipe.transparent) png_set_tRNS(png, info, alphas, count, nullptr);
    } else if (recipe.transparent) {
        const auto key = [&](int c) { return static_cast<png_uint_16>(SampleAt(recipe, 2, 1, c)); };
        const png_color_16 colour{0, key(0), key(1), key(2), key(0)};
        png_set_tRNS(png, info, nullptr, 0, &colour);
    }
    std::uint8_t exif[26] = {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0};
    exif[19] = static_cast<std::uint8_t>(recipe.orientation);
    if (recipe.orientation != 1) png_set_eXIf_1(png, info, sizeof exif, exif);
    png_set_gAMA(png, info, 1 / 2.2); // sRGB's: it changes nothing
    png_write_info(png, info);
    png_set_packing(png);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < recipe.height; ++y) {
            std::vector<std::uint8_t> row;
            for (int x = 0; x < recipe.width; ++x) {
                for (int c = 0; c < ChannelsOf(recipe.type); ++c) {
                    const unsigned sample = SampleAt(recipe, x, y, c);
                    if (recipe.depth == 16) row.push_back(static_cast<std::uint8_t>(sample >> 8));
                    row.push_back(static_cast<std::uint8_t>(sample));
                }
            }
            png_write_row(png, row.data());
        }
    }
}

FileBytes Compose(const PngRecipe& recipe) {
    return WrittenPng([&](png_structp png, png_infop info) { Write(recipe, png, info); });
}

Rgb OverMatte(double red, double green, double blue, double alpha) {
    const auto mix = [&](double value, unsigned matte) {
        return static_cast<std::uint8_t>(std::floor(value * alpha + matte * (1 - alpha) + 0.5 + 1e-9));
    };
    return {mix(red, RedOf(kMatte)), mix(green, GreenOf(kMatte)), mix(blue, BlueOf(kMatte))};
}

/// What the composed pixel looks like, in reals.
Rgb WantedAt(const PngRecipe& png, int x, int y) {
    const double most = (1 << png.depth) - 1;
    const bool grey = (png.type & PNG_COLOR_MASK_COLOR) == 0;
    if (png.type == PNG_COLOR_TYPE_PALETTE) {
        const unsigned index = SampleAt(png, x, y, 0);
        const Rgb entry = EntryAt(index);
        return OverMatte(entry.red, entry.green, entry.blue, png.transparent ? EntryAlpha(index) / 255.0 : 1);
    }
    double alpha = 1;
    bool key = png.transparent;
    double part[3];
    for (int c = 0; c < 3; ++c) {
        const int channel = grey ? 0 : c;
        part[c] = SampleAt(png, x, y, channel) * 255 / most;
        key = key && SampleAt(png, x, y, channel) == SampleAt(png, 2, 1, channel);
    }
    if ((png.type & PNG_COLOR_MASK_ALPHA) != 0) alpha = SampleAt(png, x, y, ChannelsOf(png.type) - 1) / most;
    return OverMatte(part[0], part[1], part[2], key ? 0 : alpha);
}

int WantedBits(const PngRecipe& png) {
    const bool indexed = png.type == PNG_COLOR_TYPE_PALETTE ||
                         (png.type == PNG_COLOR_TYPE_GRAY && !(png.depth == 16 && png.transparent));
    return indexed ? DibRoundBitDepth(std::min(png.depth, 8)) : 24;
}

void ExpectRecipe(const PngRecipe& png, const std::string& name) {
    SCOPED_TRACE(name + " type " + std::to_string(png.type) + " depth " + std::to_string(png.depth));
    const bool turned = png.orientation == 6;
    ExpectPicture(kMatte, Compose(png), turned ? png.height : png.width, turned ? png.width : png.height,
                  WantedBits(png), [&](int x, int y) {
                      return turned ? WantedAt(png, y, png.height - 1 - x) : WantedAt(png, x, y);
                  });
}

TEST(PngDecoder, ReadsEveryKindUpright) {
    const std::pair<int, std::vector<int>> kinds[] = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
                                                      {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}},
                                                      {PNG_COLOR_TYPE_RGB, {8, 16}},
                                                      {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
                                                      {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}}};
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}}) {
        for (const auto& [type, depths] : kinds) {
            for (const int depth : depths) {
                const bool keyed = (type & PNG_COLOR_MASK_ALPHA) == 0;
                ExpectRecipe({width, height, type, depth, false, false}, "plain");
                ExpectRecipe({width, height, type, depth, true, false, 6}, "interlaced, turned");
                if (keyed) ExpectRecipe({width, height, type, depth, false, true}, "transparent");
                if (keyed) ExpectRecipe({width, height, type, depth, true, true}, "both");
            }
        }
    }
}

TEST(PngWriter, IsReadBackAsItWas) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {300, 47}}) {
        const OwnedDib picture = NoisePicture(width, height, 24, 1);
        std::string error;
        const DecodedPicture got = DecodePicture(EncodePng(picture.Get(), error), kMatte, kMany);
        ASSERT_EQ(error + got.error, "");
        ASSERT_EQ(GlobalBytes(got.picture.Get()), GlobalBytes(picture.Get()));
        EXPECT_EQ(std::memcmp(&*got.picture, &*picture, GlobalBytes(picture.Get())), 0);
    }
    std::string error;
    const OwnedDib indexed(DibCreate(4, 4, nullptr, 8)), empty(DibCreate(0, 4, nullptr, 24));
    for (const DibHandle wrong : {indexed.Get(), empty.Get(), DibHandle{0}}) {
        EXPECT_TRUE(EncodePng(wrong, error).empty());
        EXPECT_NE(error, "");
    }
}

TEST(PngWriter, SaysNoRepetitionsOfGrain) {
    // Slopes with grain of some levels, as photos are.
    std::vector<std::uint8_t> rows(300 * 3 * 230);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = static_cast<std::uint8_t>(i % 900 / 6 + i / 9000 + random() % 8);
    OwnedDib picture = DibCreate(300, 230, nullptr, 24);
    for (std::int32_t y = 0; y < 230; ++y)
        std::memcpy(picture.Rows().Row(y), &rows[static_cast<std::size_t>(y) * 900], 900);
    std::string error;
    const std::size_t bytes = EncodePng(picture.Get(), error).size();
    const auto filtered = FilterRows({900, 3, rows}, RowFilter::Least);
    EXPECT_LT(bytes, Deflate(filtered, kUsualEffort).size() * 97 / 100);
    for (const std::size_t length : {0U, 1U, 65536U, 200001U}) {
        std::vector<std::uint8_t> read(length + 1);
        uLongf got = read.size();
        const auto packed = DeflateRuns(std::span(rows).first(length));
        EXPECT_EQ(uncompress(read.data(), &got, packed.data(), packed.size()), Z_OK);
        EXPECT_EQ(got, length);
        EXPECT_TRUE(
            std::equal(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(length), read.begin()));
    }
}

} // namespace
} // namespace lumafold::test
