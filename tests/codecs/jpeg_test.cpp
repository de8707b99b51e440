#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>
#include <jpeglib.h>

#include "codecs/decode.h"

namespace lumafold {
namespace {

struct JpegRecipe {
    const char* name;
    J_COLOR_SPACE given, stored;
    int channels;
    bool progressive = false, adobe = true;
    int orientation = 1;
};
constexpr int kWidth = 61, kHeight = 47;

/// A smooth picture, which JPEG keeps closely, different in every corner and channel. Value 0 to 255.
int LightAt(int x, int y, int channel) {
    return channel == 0 ? 20 + x * 3 : channel == 1 ? 230 - y * 4 : 60 + x + y;
}

std::vector<std::uint8_t> Compose(const JpegRecipe& recipe) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&info, &buffer, &length);
    info.image_width = kWidth;
    info.image_height = kHeight;
    info.input_components = recipe.channels;
    info.in_color_space = recipe.given;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, recipe.stored);
    jpeg_set_quality(&info, 97, TRUE);
    if (recipe.progressive) jpeg_simple_progression(&info);
    if (!recipe.adobe) info.write_Adobe_marker = FALSE;
    jpeg_start_compress(&info, TRUE);
    JOCTET exif[] = {'E',  'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0,
                     0x12, 1,   3,   0,   1, 0, 0,   0,   0,  0, 0, 0, 0, 0, 0, 0};
    exif[24] = static_cast<JOCTET>(recipe.orientation);
    jpeg_write_marker(&info, JPEG_APP0 + 1, exif, sizeof exif);
    for (int y = 0; y < kHeight; ++y) {
        JSAMPLE row[kWidth * 4];
        for (int x = 0; x < kWidth; ++x) {
            for (int c = 0; c < recipe.channels; ++c) {
                // Inks: black at 64 of 255 darkens everything; marked files hold them inverted, as light.
                const int value = c == 3 ? 191 : LightAt(x, y, c);
                row[x * recipe.channels + c] = static_cast<JSAMPLE>(recipe.adobe ? value : 255 - value);
            }
        }
        JSAMPROW rows[] = {row};
        jpeg_write_scanlines(&info, rows, 1);
    }
    jpeg_finish_compress(&info);
    std::vector<std::uint8_t> file(buffer, buffer + length);
    jpeg_destroy_compress(&info);
    std::free(buffer);
    return file;
}

void ExpectPicture(const JpegRecipe& recipe) {
    SCOPED_TRACE(std::string(recipe.name) + ", orientation " + std::to_string(recipe.orientation));
    const DecodedPicture got = DecodePicture(Compose(recipe), 0, 1 << 20);
    ASSERT_EQ(got.error, "");
    const LockedDib dib(got.picture.Get());
    const bool grey = recipe.channels == 1;
    EXPECT_EQ(dib->biBitCount, grey ? 8 : 24);
    ASSERT_EQ(dib->biWidth, recipe.orientation >= 5 ? kHeight : kWidth);
    ASSERT_EQ(dib->biHeight, recipe.orientation >= 5 ? kWidth : kHeight);
    const int right = kWidth - 1, bottom = kHeight - 1;
    int worst = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            // Where the stored pixel has to be seen.
            const std::pair<int, int> places[] = {
                {x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                {y, x}, {bottom - y, x}, {bottom - y, right - x}, {y, right - x}};
            const auto [seenX, seenY] = places[recipe.orientation - 1];
            const PixelValue value = DibGetPixel(*dib, seenX, seenY);
            for (int c = 0; c < (grey ? 1 : 3); ++c) {
                const int seen = static_cast<int>(grey ? value : value >> (8 * c) & 0xFF);
                int wanted = LightAt(x, y, c);
                if (recipe.channels == 4) wanted = wanted * 191 / 255;
                worst = std::max(worst, std::abs(seen - wanted));
            }
        }
    }
    EXPECT_LE(worst, 10);
    if (grey) {
        Palette palette;
        DibGetPalette(*dib, palette);
        for (std::size_t i = 0; i < 256; ++i)
            EXPECT_EQ(palette[i].green, i);
    }
}

TEST(JpegDecoder, ReadsEveryKindOfColourUpright) {
    ExpectPicture({"RGB", JCS_RGB, JCS_RGB, 3});
    ExpectPicture({"progressive", JCS_RGB, JCS_YCbCr, 3, true});
    ExpectPicture({"CMYK", JCS_CMYK, JCS_CMYK, 4});
    ExpectPicture({"CMYK without mark", JCS_CMYK, JCS_CMYK, 4, false, false});
    ExpectPicture({"YCCK", JCS_CMYK, JCS_YCCK, 4});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        ExpectPicture({"YCbCr", JCS_RGB, JCS_YCbCr, 3, false, true, orientation});
        ExpectPicture({"grey", JCS_GRAYSCALE, JCS_GRAYSCALE, 1, false, true, orientation});
    }
}

TEST(JpegDecoder, TellsWhenItIsTooLargeOrPixelsAreMissing) {
    std::vector<std::uint8_t> file = Compose({"", JCS_RGB, JCS_YCbCr, 3});
    const std::uint8_t frame[] = {0xFF, 0xC0, 0, 17, 8, 0, kHeight, 0, kWidth};
    const auto at = std::search(file.begin(), file.end(), std::begin(frame), std::end(frame));
    ASSERT_NE(at, file.end());
    at[5] = 0x40;
    EXPECT_EQ(DecodePicture(file, 0, 1 << 30).error, "61 x 16431 pixels are too many, a side may have 16384");
    for (const bool progressive : {false, true}) {
        file = Compose({"", JCS_RGB, JCS_YCbCr, 3, progressive});
        for (std::size_t length = 3; length < file.size(); length += 29) {
            EXPECT_EQ(DecodePicture(std::span(file).first(length), 0, 1 << 20).error,
                      "the file ends too early")
                << length << " of " << file.size();
        }
    }
}

} // namespace
} // namespace lumafold
