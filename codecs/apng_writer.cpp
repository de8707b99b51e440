#include "codecs/apng_writer.h"

#include "codecs/frame_changes.h"
#include "codecs/png_frames.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostDelay = 65535;
constexpr std::uint32_t kForEver = 0, kTicksPerSecond = 100;
enum class Dispose : std::uint8_t { None = 0 };
enum class Blend : std::uint8_t { Source = 0, Over = 1 };

ChunkWriter::Data FrameControl(std::uint32_t sequence, const PngFrame& frame, std::int32_t delay,
                               Blend blend) {
    ChunkWriter::Data data;
    data.U32(sequence);
    data.U32(static_cast<std::uint32_t>(RectWidth(frame.rect)));
    data.U32(static_cast<std::uint32_t>(RectHeight(frame.rect)));
    data.U32(static_cast<std::uint32_t>(frame.rect.left)).U32(static_cast<std::uint32_t>(frame.rect.top));
    data.U16(static_cast<std::uint32_t>(std::clamp(delay, 0, kMostDelay))).U16(kTicksPerSecond);
    return data.U8(static_cast<std::uint32_t>(Dispose::None)).U8(static_cast<std::uint32_t>(blend));
}

std::vector<std::uint8_t> Encode(const Animation& animation, const FrameProgress& progress) {
    // A widely used viewer misplaces cropped frames of packed pixels, so only a single picture is packed.
    const bool still = animation.frames.size() == 1;
    const PngFrames frames(animation, still ? PngFrames::Packing::Tight : PngFrames::Packing::WholeBytes,
                           progress);
    ChunkWriter file("\x89PNG\r\n\x1A\n");
    file.Put("IHDR", frames.Header({0, 0, animation.width, animation.height}));
    file.Put("acTL",
             ChunkWriter::Data().U32(static_cast<std::uint32_t>(animation.frames.size())).U32(kForEver));
    if (frames.HavePalette()) file.Put("PLTE", frames.PaletteData());
    if (frames.HaveHoles()) file.Put("tRNS", frames.TransparencyData());
    file.PutComment(animation.comment);
    std::uint32_t sequence = 0;
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        const PngFrame& picture = frames.Get()[i];
        const Blend blend = i > 0 ? Blend::Over : Blend::Source;
        file.Put("fcTL", FrameControl(sequence++, picture, animation.frames[i].delay, blend));
        ChunkWriter::Data data;
        if (i > 0) data.U32(sequence++);
        file.Put(i == 0 ? "IDAT" : "fdAT", data.Bytes(picture.data.data(), picture.data.size()));
    }
    file.Put("IEND");
    return file.Take();
}

} // namespace

std::vector<std::uint8_t> EncodeApng(const Animation& animation, std::string& error,
                                     const FrameProgress& progress) {
    return FileOrError([&] { return Encode(animation, progress); }, error);
}

} // namespace lumafold
