#include <memory>
#include <vector>

#include <libheif/heif.h>

#include "codecs/colour_profile.h"
#include "codecs/decode_common.h"

namespace lumafold {
namespace {

template <auto free>
struct FreedBy {
    template <typename Thing>
    void operator()(Thing* thing) const {
        free(thing);
    }
};
using Context = std::unique_ptr<heif_context, FreedBy<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, FreedBy<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, FreedBy<heif_image_release>>;
using Numbers = std::unique_ptr<heif_color_profile_nclx, FreedBy<heif_nclx_color_profile_free>>;

void Check(const heif_error& error) {
    if (error.code == heif_error_Ok) return;
    if (error.subcode == heif_suberror_End_of_data) throw DecodeError{kEndsTooEarly};
    const std::string text = OneLine(error.message); // may hold names of boxes as they stand in the file
    if (error.code == heif_error_Unsupported_filetype || error.code == heif_error_Unsupported_feature)
        throw DecodeError{"the picture is of a kind that cannot be read (" + text + ")"};
    throw DecodeError{"the HEIC or AVIF data is damaged (" + text + ")"};
}

/// By the profile, or by the numbers of the primaries where those alone are told. Curves of wide range are
/// taken for sRGB's.
ToSrgb ReadColours(const Handle& handle) {
    constexpr SampleLayout kLayout{SampleLayout::Colours::Rgb, 1, true};
    std::vector<std::uint8_t> profile(heif_image_handle_get_raw_color_profile_size(handle.get()));
    if (!profile.empty()) {
        Check(heif_image_handle_get_raw_color_profile(handle.get(), profile.data()));
        return ToSrgb(profile, kLayout);
    }
    heif_color_profile_nclx* told = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle.get(), &told).code != heif_error_Ok) return {};
    const Numbers owner(told);
    if (told->color_primaries == heif_color_primaries_ITU_R_BT_709_5 ||
        told->color_primaries == heif_color_primaries_unspecified || told->color_primary_white_y <= 0) {
        return {};
    }
    return ToSrgb(ColourNumbers{0,
                                {told->color_primary_white_x, told->color_primary_white_y},
                                {told->color_primary_red_x, told->color_primary_red_y},
                                {told->color_primary_green_x, told->color_primary_green_y},
                                {told->color_primary_blue_x, told->color_primary_blue_y}},
                  kLayout);
}

/// The picture turned, mirrored and cut as the file says.
Image Decode(const Handle& handle) {
    const std::unique_ptr<heif_decoding_options, FreedBy<heif_decoding_options_free>> options(
        heif_decoding_options_alloc());
    if (!options) throw std::bad_alloc();
    options->convert_hdr_to_8bit = 1;
    options->strict_decoding = 1;
    options->decoder_id = "aom"; // of AVIF: the other one writes to standard error what is wrong with a file
    heif_image* image = nullptr;
    Check(heif_decode_image(handle.get(), &image, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                            options.get()));
    return Image(image);
}

} // namespace

OwnedDib DecodeHeif(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    const Context context(heif_context_alloc());
    if (!context) throw std::bad_alloc();
    heif_context_set_max_decoding_threads(context.get(), 0); // hosts decide what runs at once
    Check(heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr));
    heif_image_handle* primary = nullptr;
    Check(heif_context_get_primary_image_handle(context.get(), &primary));
    const Handle handle(primary);
    const auto checkSize = [&](int width, int height) {
        CheckSize(static_cast<std::uint64_t>(std::max(width, 0)),
                  static_cast<std::uint64_t>(std::max(height, 0)), limits);
    };
    checkSize(heif_image_handle_get_width(primary), heif_image_handle_get_height(primary));
    const ToSrgb toSrgb = ReadColours(handle);
    const Image image = Decode(handle);
    // What was unpacked may differ from what was promised.
    const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
    checkSize(width, height);
    int stride = 0;
    const std::uint8_t* plane = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    const bool premultiplied = heif_image_is_premultiplied_alpha(image.get()) != 0;

    PictureBuilder picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), {}, 24);
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(width) * 4);
    for (int y = 0; y < height; ++y) {
        std::memcpy(rgba.data(), plane + static_cast<std::ptrdiff_t>(y) * stride, rgba.size());
        for (std::size_t i = 0; premultiplied && i < rgba.size(); i += 4)
            Unmultiply(rgba.data() + i);
        toSrgb.Convert(rgba.data(), static_cast<std::size_t>(width));
        PutOverMatte(rgba.data(), static_cast<std::size_t>(width), limits.matte, picture.Row(y));
    }
    return picture.Finish();
}

} // namespace lumafold
