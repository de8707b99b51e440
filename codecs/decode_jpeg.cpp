#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jpeglib.h>

#include <jerror.h>

#include "codecs/colour_profile.h"
#include "codecs/jump_guard.h"
#include "codecs/orientation.h"

namespace lumafold {
namespace {

/// A file being read by libjpeg.
class JpegReader : public JumpGuard {
public:
    JpegReader() {
        info_.err = jpeg_std_error(&errors_);
        errors_.error_exit = OnError;
        errors_.emit_message = OnMessage;
        errors_.output_message = [](j_common_ptr) {};
        info_.client_data = this;
        progress_.progress_monitor = OnProgress;
        // Clears the structure but for the error manager and the client data.
        Guarded([&] { jpeg_create_decompress(&info_); });
        info_.progress = &progress_;
    }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;
    ~JpegReader() { jpeg_destroy_decompress(&info_); }

    jpeg_decompress_struct& Info() { return info_; }

private:
    static JpegReader* Self(j_common_ptr info) { return static_cast<JpegReader*>(info->client_data); }

    static void OnError(j_common_ptr info) {
        char text[JMSG_LENGTH_MAX], line[JMSG_LENGTH_MAX + 40];
        info->err->format_message(info, text);
        std::snprintf(line, sizeof line, "the JPEG data is damaged (%s)", text);
        Self(info)->Fail(line);
    }
    /// Warnings after which pixels are made up are failures; what is merely odd is not.
    static void OnMessage(j_common_ptr info, int level) {
        if (level >= 0) return;
        switch (info->err->msg_code) {
        case JWRN_JPEG_EOF:
            Self(info)->Fail(kEndsTooEarly);
        case JWRN_HIT_MARKER:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_ARITH_BAD_CODE:
        case JWRN_MUST_RESYNC:
            OnError(info);
            break;
        default:
            break;
        }
    }
    /// A few kilobytes can ask for thousands of scans over a large picture; no encoder makes more than a few
    /// dozen.
    static void OnProgress(j_common_ptr info) {
        constexpr int kMostScans = 100;
        if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans) {
            Self(info)->Fail("the JPEG data has too many scans");
        }
    }

    jpeg_decompress_struct info_{};
    jpeg_error_mgr errors_{};
    jpeg_progress_mgr progress_{};
};

int ReadOrientation(const jpeg_decompress_struct& info) {
    constexpr std::uint8_t kName[6] = {'E', 'x', 'i', 'f', 0, 0};
    for (const jpeg_marker_struct* marker = info.marker_list; marker != nullptr; marker = marker->next) {
        const std::size_t bytes = marker->data_length;
        if (bytes < sizeof kName || std::memcmp(marker->data, kName, sizeof kName) != 0) continue;
        return ExifOrientation({marker->data + sizeof kName, bytes - sizeof kName});
    }
    return 1;
}

J_COLOR_SPACE DeliveredColours(J_COLOR_SPACE stored) {
    switch (stored) {
    case JCS_GRAYSCALE:
        return JCS_GRAYSCALE;
    case JCS_CMYK:
    case JCS_YCCK:
        return JCS_CMYK;
    case JCS_RGB:
    case JCS_YCbCr:
        return JCS_RGB;
    default:
        throw DecodeError{"the JPEG data has an unknown kind of colours"};
    }
}

void ConvertRgb(const std::uint8_t* row, std::uint8_t* out, std::uint32_t width) {
    for (std::uint32_t x = 0; x < width; ++x, row += 3, out += 3) {
        out[0] = row[2];
        out[1] = row[1];
        out[2] = row[0];
    }
}

/// Files with an Adobe marker store the inks inverted, as light.
void ConvertCmyk(std::uint8_t* row, std::uint8_t* out, std::uint32_t width, bool inverted,
                 const ToSrgb& toSrgb) {
    if (toSrgb) {
        for (std::size_t i = 0; inverted && i < std::size_t{4} * width; ++i)
            row[i] ^= 255;
        toSrgb.ConvertInks(row, out, width);
        return;
    }
    const unsigned flip = inverted ? 0 : 255;
    for (std::uint32_t x = 0; x < width; ++x, row += 4, out += 3) {
        const unsigned black = row[3] ^ flip;
        for (int channel = 0; channel < 3; ++channel) {
            out[2 - channel] = static_cast<std::uint8_t>(((row[channel] ^ flip) * black + 127) / 255);
        }
    }
}

/// What the profile in the file says of the colours that are delivered.
ToSrgb ReadColours(JpegReader& reader) {
    JOCTET* profile = nullptr;
    unsigned bytes = 0;
    reader.Guarded([&] {
        if (jpeg_read_icc_profile(&reader.Info(), &profile, &bytes) == 0) profile = nullptr;
    });
    const std::unique_ptr<JOCTET, decltype(&std::free)> owner(profile, std::free);
    if (profile == nullptr) return {};
    const J_COLOR_SPACE delivered = reader.Info().out_color_space;
    return ToSrgb({profile, bytes}, {delivered == JCS_GRAYSCALE ? SampleLayout::Colours::Grey
                                     : delivered == JCS_CMYK    ? SampleLayout::Colours::Cmyk
                                                                : SampleLayout::Colours::Rgb});
}

} // namespace

OwnedDib DecodeJpeg(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    JpegReader reader;
    jpeg_decompress_struct& info = reader.Info();
    reader.Guarded([&] {
        jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
        for (const int marker : {1, 2}) // EXIF, profile
            jpeg_save_markers(&info, JPEG_APP0 + marker, 0xFFFF);
        jpeg_read_header(&info, TRUE);
    });
    CheckSize(info.image_width, info.image_height, limits);
    const int orientation = ReadOrientation(info); // finishing drops the markers
    info.out_color_space = DeliveredColours(info.jpeg_color_space);

    const bool grey = info.out_color_space == JCS_GRAYSCALE;
    const std::uint32_t width = info.image_width, height = info.image_height;
    const ToSrgb toSrgb = ReadColours(reader);
    Palette palette = grey ? GreyRamp(8) : Palette{};
    if (grey) toSrgb.Convert(palette);
    PictureBuilder picture(width, height, palette, grey ? 8 : 24);
    std::vector<std::uint8_t> row(std::size_t{4} * width);
    reader.Guarded([&] {
        jpeg_start_decompress(&info);
        for (std::uint32_t y = 0; y < height; ++y) {
            JSAMPROW to = row.data();
            jpeg_read_scanlines(&info, &to, 1);
            std::uint8_t* out = picture.Row(static_cast<std::int32_t>(y));
            switch (info.out_color_space) {
            case JCS_GRAYSCALE:
                std::memcpy(out, to, width);
                break;
            case JCS_CMYK:
                ConvertCmyk(to, out, width, info.saw_Adobe_marker != 0, toSrgb);
                break;
            default:
                toSrgb.Convert(to, width);
                ConvertRgb(to, out, width);
                break;
            }
        }
        jpeg_finish_decompress(&info);
    });
    return Upright(picture.Finish(), orientation);
}

} // namespace lumafold
