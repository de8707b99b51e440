#include "tests/codecs/compose.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <jpeglib.h>

#include "codecs/decode.h"
#include "tests/support/colours.h"

namespace lumafold::test {
RgbaPicture SmoothPicture(int width, int height, bool opaque) {
    RgbaPicture picture{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int alpha = opaque ? 255 : 255 * (x + 1) / width;
            for (const int sample : {20 + x * 200 / width, 230 - y * 180 / height, 60 + x + y, alpha})
                picture.samples.push_back(static_cast<std::uint8_t>(sample));
        }
    }
    return picture;
}

FileBytes ComposeJpeg(const RgbaPicture& picture, const ComposeOptions& options) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&info, &buffer, &length);
    info.image_width = static_cast<JDIMENSION>(picture.width);
    info.image_height = static_cast<JDIMENSION>(picture.height);
    const auto [orientation, profile, given, stored, progressive, adobe] = options;
    const int channels = given == JCS_GRAYSCALE ? 1 : given == JCS_CMYK ? 4 : 3;
    info.input_components = channels;
    info.in_color_space = static_cast<J_COLOR_SPACE>(given);
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, static_cast<J_COLOR_SPACE>(stored));
    jpeg_set_quality(&info, 100, TRUE);
    if (progressive) jpeg_simple_progression(&info);
    if (!adobe) info.write_Adobe_marker = FALSE;
    jpeg_start_compress(&info, TRUE);
    FileBytes exif{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0};
    exif.push_back(static_cast<std::uint8_t>(orientation));
    exif.resize(32);
    jpeg_write_marker(&info, JPEG_APP0 + 1, exif.data(), static_cast<unsigned>(exif.size()));
    if (!profile.empty())
        jpeg_write_icc_profile(&info, profile.data(), static_cast<unsigned>(profile.size()));
    for (int y = 0; y < picture.height; ++y) {
        FileBytes samples;
        for (int i = 0; i < picture.width * 4; ++i) {
            const std::uint8_t sample = picture.samples[static_cast<std::size_t>(y * picture.width * 4 + i)];
            // Files with the mark hold inks inverted, as light.
            if (i % 4 < channels) samples.push_back(adobe ? sample : static_cast<std::uint8_t>(255 - sample));
        }
        JSAMPROW row = samples.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    FileBytes file(buffer, buffer + length);
    jpeg_destroy_compress(&info);
    std::free(buffer);
    return file;
}

FileBytes WrittenPng(const std::function<void(png_structp, png_infop)>& write) {
    FileBytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep data, std::size_t length) {
            auto* out = static_cast<FileBytes*>(png_get_io_ptr(writer));
            out->insert(out->end(), data, data + length);
        },
        nullptr);
    write(png, info);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

FileBytes ComposePng(const RgbaPicture& picture, const ComposeOptions& options) {
    return WrittenPng([&](png_structp png, png_infop info) {
        png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width),
                     static_cast<png_uint_32>(picture.height), 8, PNG_COLOR_TYPE_RGB_ALPHA,
                     PNG_INTERLACE_NONE, 0, 0);
        if (!options.profile.empty()) {
            png_set_iCCP(png, info, "p", 0, options.profile.data(),
                         static_cast<png_uint_32>(options.profile.size()));
        }
        png_write_info(png, info);
        for (int y = 0; y < picture.height; ++y)
            png_write_row(png, picture.samples.data() + y * picture.width * 4);
    });
}

FileBytes KeptPicture(const std::string& name, int orientation) {
    std::ifstream in(LUMAFOLD_TEST_PICTURES + name, std::ios::binary);
    FileBytes file{std::istreambuf_iterator<char>(in), {}};
    constexpr std::uint8_t kOrientation[] = {0x12, 1, 3, 0, 1, 0, 0, 0};
    const auto at = std::search(file.begin(), file.end(), std::begin(kOrientation), std::end(kOrientation));
    EXPECT_FALSE(file.empty() || (orientation > 0 && at == file.end())) << name;
    if (orientation > 0) at[8] = static_cast<std::uint8_t>(orientation);
    return file;
}

void ExpectPicture(PixelValue matte, std::span<const std::uint8_t> file, int width, int height, int bits,
                   const std::function<Rgb(int x, int y)>& wantedAt) {
    const DecodedPicture got = DecodePicture(file, matte, 1 << 20);
    ASSERT_EQ(got.error, "");
    const DibHeader& dib = *got.picture;
    ASSERT_EQ(std::tuple(+dib.biWidth, +dib.biHeight, +dib.biBitCount), std::tuple(width, height, bits));
    for (int i = 0; i < width * height; ++i)
        ASSERT_EQ(ColourAt(dib, i % width, i / width), wantedAt(i % width, i / width))
            << i % width << ", " << i / width;
}

} // namespace lumafold::test
