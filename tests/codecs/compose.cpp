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
#include <unistd.h>
#endif
#if LUMAFOLD_HEIF
#include <libheif/heif.h>
#endif

#if LUMAFOLD_HEIF
/// The encoder of HEIC, which only these tests use, keeps some of its memory. Read by the leak sanitizer.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() { return "leak:libx265\n"; }
#endif

namespace lumafold::test {
namespace {

/// An EXIF block that tells this orientation and nothing else.
FileBytes Exif(int orientation) {
    FileBytes exif{'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0};
    exif.push_back(static_cast<std::uint8_t>(orientation));
    exif.resize(26);
    return exif;
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
    const auto [given, stored, progressive, adobe] = options.jpeg;
    const int channels = given == JCS_GRAYSCALE ? 1 : given == JCS_CMYK ? 4 : 3;
    info.input_components = channels;
    info.in_color_space = static_cast<J_COLOR_SPACE>(given);
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, static_cast<J_COLOR_SPACE>(stored));
    jpeg_set_quality(&info, 100, TRUE);
    if (progressive) jpeg_simple_progression(&info);
    if (!adobe) info.write_Adobe_marker = FALSE;
    jpeg_start_compress(&info, TRUE);
    FileBytes exif = Exif(options.orientation);
    exif.insert(exif.begin(), {'E', 'x', 'i', 'f', 0, 0});
    jpeg_write_marker(&info, JPEG_APP0 + 1, exif.data(), static_cast<unsigned>(exif.size()));
    const FileBytes profile(options.profile.begin(), options.profile.end());
    if (!profile.empty())
        jpeg_write_icc_profile(&info, profile.data(), static_cast<unsigned>(profile.size()));
    for (int y = 0; y < picture.height; ++y) {
        FileBytes samples;
        for (int i = 0; i < picture.width * 4; ++i) {
            const std::uint8_t sample = picture.samples[static_cast<std::size_t>(y * picture.width * 4 + i)];
            // Files with the mark hold inks inverted, as light.
            if (i % 4 < channels) samples.push_back(adobe ? sample : 255 - sample);
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
FileBytes ComposeTiff(const RgbaPicture& picture, const ComposeOptions& options) {
    const auto [compression, bits, tiled, grey] = options.tiff;
    std::FILE* file = std::tmpfile();
    TIFF* tiff = TIFFFdOpen(fileno(file), "", "w");
    const int blockWidth = tiled ? 16 : picture.width, blockHeight = tiled ? 16 : 5;
    const auto set = [&](ttag_t tag, int value) { TIFFSetField(tiff, tag, value); };
    set(TIFFTAG_IMAGEWIDTH, picture.width);
    set(TIFFTAG_IMAGELENGTH, picture.height);
    set(TIFFTAG_BITSPERSAMPLE, bits);
    set(TIFFTAG_SAMPLESPERPIXEL, grey ? 1 : 4);
    set(TIFFTAG_PHOTOMETRIC, grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    set(TIFFTAG_COMPRESSION, compression);
    set(TIFFTAG_ORIENTATION, options.orientation);
    if (tiled) set(TIFFTAG_TILEWIDTH, blockWidth);
    set(tiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, blockHeight);
    const std::uint16_t unassociated = EXTRASAMPLE_UNASSALPHA;
    if (!grey) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &unassociated);
    if (!options.profile.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<int>(options.profile.size()),
                     options.profile.data());
    std::uint32_t number = 0;
    for (int top = 0; top < picture.height; top += blockHeight) {
        for (int left = 0; left < picture.width; left += blockWidth, ++number) {
            FileBytes block;
            const int rows = tiled ? blockHeight : std::min(blockHeight, picture.height - top);
            for (int i = 0; i < blockWidth * rows; ++i) {
                const int x = std::min(left + i % blockWidth, picture.width - 1);
                const int y = std::min(top + i / blockWidth, picture.height - 1);
                const std::uint8_t* from = picture.samples.data() + (y * picture.width + x) * 4;
                for (int byte = 0; byte < (grey ? 1 : 4) * bits / 8; ++byte)
                    block.push_back(from[byte * 8 / bits]);
            }
            (tiled ? TIFFWriteEncodedTile : TIFFWriteEncodedStrip)(tiff, number, block.data(),
                                                                   std::ssize(block));
        }
    }
    TIFFFlush(tiff);
    FileBytes bytes(static_cast<std::size_t>(lseek(fileno(file), 0, SEEK_END)));
    EXPECT_EQ(pread(fileno(file), bytes.data(), bytes.size(), 0), std::ssize(bytes));
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
    heif_color_profile_nclx* told = heif_nclx_color_profile_alloc();
    heif_nclx_color_profile_set_color_primaries(told, heif_color_primaries_SMPTE_EG_432_1);
    heif_nclx_color_profile_set_matrix_coefficients(told, heif_matrix_coefficients_ITU_R_BT_601_6);
    if (options.saysDisplayP3) must(heif_image_set_nclx_color_profile(image, told));
    heif_nclx_color_profile_free(told);
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
