#include "tests/codecs/compose.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>
#include <jpeglib.h>

#if LUMAFOLD_WEBP
#include <webp/encode.h>
#include <webp/mux.h>
#endif
#if LUMAFOLD_TIFF
#include <tiffio.h>
#endif
#if LUMAFOLD_HEIF
#include <libheif/heif.h>
#endif

namespace lumafold::test {
namespace {

FileBytes Exif(int orientation) {
    FileBytes exif{'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    exif[18] = static_cast<std::uint8_t>(orientation);
    return exif;
}

FileBytes Opaque(const RgbaPicture& picture) {
    FileBytes rgb;
    for (std::size_t i = 0; i < picture.samples.size(); ++i) {
        if (i % 4 != 3) rgb.push_back(picture.samples[i]);
    }
    return rgb;
}

} // namespace

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
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, JCS_RGB);
    jpeg_set_quality(&info, 100, TRUE);
    jpeg_start_compress(&info, TRUE);
    const FileBytes& profile{options.profile.begin(), options.profile.end()};
    if (!profile.empty())
        jpeg_write_icc_profile(&info, profile.data(), static_cast<unsigned>(profile.size()));
    FileBytes rgb = Opaque(picture);
    for (int y = 0; y < picture.height; ++y) {
        JSAMPROW row = rgb.data() + y * picture.width * 3;
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

#if LUMAFOLD_WEBP
FileBytes ComposeWebp(const RgbaPicture& picture, const ComposeOptions& options) {
    std::uint8_t* encoded = nullptr;
    const int stride = picture.width * 4;
    const std::size_t bytes =
        options.lossless
            ? WebPEncodeLosslessRGBA(picture.samples.data(), picture.width, picture.height, stride, &encoded)
            : WebPEncodeRGBA(picture.samples.data(), picture.width, picture.height, stride, 95, &encoded);
    WebPMux* mux = WebPMuxNew();
    const WebPData image{encoded, bytes};
    WebPMuxSetImage(mux, &image, 1);
    const FileBytes exif = Exif(options.orientation);
    const WebPData exifData{exif.data(), exif.size()},
        profile{options.profile.data(), options.profile.size()};
    if (options.orientation != 1) WebPMuxSetChunk(mux, "EXIF", &exifData, 1);
    if (!options.profile.empty()) WebPMuxSetChunk(mux, "ICCP", &profile, 1);
    WebPData file{};
    EXPECT_EQ(WebPMuxAssemble(mux, &file), WEBP_MUX_OK);
    FileBytes copy(file.bytes, file.bytes + file.size);
    WebPDataClear(&file);
    WebPMuxDelete(mux);
    WebPFree(encoded);
    return copy;
}
#endif

#if LUMAFOLD_TIFF
FileBytes ComposeTiff(const RgbaPicture& picture, const TiffOptions& options) {
    std::FILE* file = std::tmpfile();
    TIFF* tiff = TIFFFdOpen(fileno(file), "", "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, options.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, options.grey ? 1 : 4);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, options.grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, options.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, options.orientation);
    const std::uint16_t unassociated = EXTRASAMPLE_UNASSALPHA;
    if (!options.grey) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &unassociated);
    if (!options.profile.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(options.profile.size()),
                     options.profile.data());
    constexpr std::size_t kTile = 16;
    const auto width = static_cast<std::size_t>(picture.width),
               height = static_cast<std::size_t>(picture.height);
    const std::size_t pixelBytes = (options.grey ? 1U : 4U) * static_cast<std::size_t>(options.bits) / 8;
    const auto put = [&](FileBytes& to, std::size_t at, std::size_t x, std::size_t y) {
        for (std::size_t i = 0; i < pixelBytes; ++i)
            to[at * pixelBytes + i] =
                picture.samples[(y * width + x) * 4 + i * 8 / static_cast<std::size_t>(options.bits)];
    };
    if (options.tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kTile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, kTile);
        for (std::size_t top = 0; top < height; top += kTile) {
            for (std::size_t left = 0; left < width; left += kTile) {
                FileBytes tile(kTile * kTile * pixelBytes);
                for (std::size_t i = 0; i < kTile * kTile; ++i)
                    put(tile, i, std::min(left + i % kTile, width - 1),
                        std::min(top + i / kTile, height - 1));
                TIFFWriteTile(tiff, tile.data(), static_cast<std::uint32_t>(left),
                              static_cast<std::uint32_t>(top), 0, 0);
            }
        }
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 5);
        for (std::size_t y = 0; y < height; ++y) {
            FileBytes row(width * pixelBytes);
            for (std::size_t x = 0; x < width; ++x)
                put(row, x, x, y);
            TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0);
        }
    }
    TIFFFlush(tiff);
    std::fseek(file, 0, SEEK_END);
    FileBytes bytes(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    TIFFCleanup(tiff);
    std::fclose(file);
    return bytes;
}
#endif

#if LUMAFOLD_HEIF
FileBytes ComposeHeif(const RgbaPicture& picture, HeifKind kind, const ComposeOptions& options) {
    heif_context* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    const auto must = [](const heif_error& error) { EXPECT_EQ(error.code, heif_error_Ok) << error.message; };
    must(heif_context_get_encoder_for_format(
        context, kind == HeifKind::Avif ? heif_compression_AV1 : heif_compression_HEVC, &encoder));
    heif_encoder_set_lossy_quality(encoder, 95);
    heif_encoder_set_parameter(encoder, "chroma", "444");
    if (kind == HeifKind::Avif) heif_encoder_set_parameter(encoder, "speed", "9");
    heif_image* image = nullptr;
    must(heif_image_create(picture.width, picture.height, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                           &image));
    must(heif_image_add_plane(image, heif_channel_interleaved, picture.width, picture.height, 8));
    int stride = 0;
    std::uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < picture.height; ++y)
        std::memcpy(plane + y * stride, picture.samples.data() + y * picture.width * 4,
                    static_cast<std::size_t>(picture.width) * 4);
    if (!options.profile.empty())
        must(heif_image_set_raw_color_profile(image, "prof", options.profile.data(), options.profile.size()));
    heif_encoding_options* how = heif_encoding_options_alloc();
    how->image_orientation = static_cast<heif_orientation>(options.orientation);
    must(heif_context_encode_image(context, image, encoder, how, nullptr));
    FileBytes file;
    heif_writer writer{1, [](heif_context*, const void* data, std::size_t size, void* to) {
                           const auto* bytes = static_cast<const std::uint8_t*>(data);
                           static_cast<FileBytes*>(to)->assign(bytes, bytes + size);
                           return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
                       }};
    must(heif_context_write(context, &writer, &file));
    heif_encoding_options_free(how);
    heif_image_release(image);
    heif_encoder_release(encoder);
    heif_context_free(context);
    return file;
}
#endif

} // namespace lumafold::test
