#include <memory>
#include <vector>

#include <webp/decode.h>
#include <webp/demux.h>

#include "codecs/colour_profile.h"
#include "codecs/decode_common.h"
#include "codecs/orientation.h"

namespace lumafold {
namespace {

struct FreeDemuxer {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, FreeDemuxer>;

Demuxer Open(std::span<const std::uint8_t> file) {
    const WebPData data{file.data(), file.size()};
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    Demuxer demuxer(WebPDemuxPartial(&data, &state));
    if (state == WEBP_DEMUX_PARSE_ERROR) throw DecodeError{"the WebP data is damaged"};
    // What says which way up the picture is may stand behind it.
    if (state != WEBP_DEMUX_DONE) throw DecodeError{kEndsTooEarly};
    if (!demuxer) throw std::bad_alloc();
    return demuxer;
}

/// The data of the first chunk of this type, empty where there is none.
std::span<const std::uint8_t> ChunkOf(const Demuxer& demuxer, const char* type) {
    WebPChunkIterator chunk{};
    std::span<const std::uint8_t> data;
    if (WebPDemuxGetChunk(demuxer.get(), type, 1, &chunk) != 0) data = {chunk.chunk.bytes, chunk.chunk.size};
    WebPDemuxReleaseChunkIterator(&chunk); // the bytes are the file's
    return data;
}

/// Some writers put JPEG's name for the block before it.
int ReadOrientation(const Demuxer& demuxer) {
    std::span<const std::uint8_t> exif = ChunkOf(demuxer, "EXIF");
    if (exif.size() >= 6 && std::memcmp(exif.data(), "Exif\0", 6) == 0) exif = exif.subspan(6);
    return ExifOrientation(exif);
}

struct Still {
    std::size_t left, top, width, height;
    std::vector<std::uint8_t> rgba;
};

Still ReadFirstFrame(const Demuxer& demuxer) {
    WebPIterator frame{};
    const bool found = WebPDemuxGetFrame(demuxer.get(), 1, &frame) != 0;
    WebPDemuxReleaseIterator(&frame); // the bytes are the file's
    if (!found || frame.complete == 0) throw DecodeError{kEndsTooEarly};
    Still still{static_cast<std::size_t>(frame.x_offset),
                static_cast<std::size_t>(frame.y_offset),
                static_cast<std::size_t>(frame.width),
                static_cast<std::size_t>(frame.height),
                {}};
    still.rgba.resize(still.width * still.height * 4);
    if (WebPDecodeRGBAInto(frame.fragment.bytes, frame.fragment.size, still.rgba.data(), still.rgba.size(),
                           frame.width * 4) == nullptr) {
        throw DecodeError{"the WebP data is damaged"};
    }
    return still;
}

} // namespace

OwnedDib DecodeWebp(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    const Demuxer demuxer = Open(file);
    const std::uint32_t width = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH);
    const std::uint32_t height = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT);
    CheckSize(width, height, limits);
    Still still = ReadFirstFrame(demuxer);
    if (still.left + still.width > width || still.top + still.height > height)
        throw DecodeError{"the WebP data is damaged"};
    const ToSrgb toSrgb(ChunkOf(demuxer, "ICCP"), {SampleLayout::Colours::Rgb, 1, true});
    toSrgb.Convert(still.rgba.data(), still.width * still.height);

    OwnedDib picture = DibCreateFlat(width, height, limits.matte);
    if (!picture) throw std::bad_alloc();
    const RowView rows = picture.Rows();
    for (std::size_t y = 0; y < still.height; ++y) {
        PutOverMatte(still.rgba.data() + y * still.width * 4, still.width, limits.matte,
                     rows.Row(static_cast<std::int64_t>(still.top + y)) + 3 * still.left);
    }
    return Upright(std::move(picture), ReadOrientation(demuxer));
}

} // namespace lumafold
