#include "codecs/mng_writer.h"

#include "codecs/frame_changes.h"
#include "codecs/png_frames.h"

namespace lumafold {
namespace {

constexpr std::uint32_t kTicksPerSecond = 100, kInfinite = 0x7FFFFFFF;

/// What a reader must be able to do, one bit each.
enum Profile : std::uint32_t {
    kProfileTold = 1 << 0,
    kSimpleFeatures = 1 << 1,
    kTransparency = 1 << 3,
    kMoreBitsTold = 1 << 6,
    kBackgroundSeen = 1 << 7,
};

ChunkWriter::Data Header(const Animation& animation, const PngFrames& frames) {
    std::uint64_t duration = 0;
    for (const AnimationFrame& frame : animation.frames)
        duration += static_cast<std::uint64_t>(std::max(frame.delay, 0));
    std::uint32_t profile = kProfileTold | kSimpleFeatures | kMoreBitsTold;
    if (frames.HaveHoles()) profile |= kTransparency | kBackgroundSeen;
    constexpr std::uint32_t kLayersNotTold = 0;
    ChunkWriter::Data data;
    data.U32(static_cast<std::uint32_t>(animation.width)).U32(static_cast<std::uint32_t>(animation.height));
    data.U32(kTicksPerSecond).U32(kLayersNotTold);
    data.U32(static_cast<std::uint32_t>(animation.frames.size()));
    return data.U32(static_cast<std::uint32_t>(std::min<std::uint64_t>(duration, kInfinite))).U32(profile);
}

ChunkWriter::Data EndlessLoop() {
    constexpr std::uint32_t kRepeat = 3, kThenShowLast = 0, kNoPause = 0;
    return ChunkWriter::Data().U8(kRepeat).U8(kThenShowLast).U32(kNoPause).U32(kInfinite);
}

/// Every picture is a frame over what stands there, and stays for `delay` ticks, like those after it.
ChunkWriter::Data Delay(std::int32_t delay) {
    constexpr std::uint32_t kFrameEach = 1, kNoName = 0, kFromNowOn = 2, kAsBefore = 0;
    ChunkWriter::Data data;
    data.U8(kFrameEach).U8(kNoName).U8(kFromNowOn).U8(kAsBefore).U8(kAsBefore).U8(kAsBefore);
    return data.U32(static_cast<std::uint32_t>(std::max(delay, 0)));
}

ChunkWriter::Data Place(const Rect& rect) {
    constexpr std::uint32_t kNoObject = 0, kVisible = 0, kAbstract = 0;
    ChunkWriter::Data data;
    data.U16(kNoObject).U8(kVisible).U8(kAbstract);
    return data.U32(static_cast<std::uint32_t>(rect.left)).U32(static_cast<std::uint32_t>(rect.top));
}

void PutPicture(ChunkWriter& file, const PngFrames& frames, const PngFrame& picture) {
    file.Put("IHDR", frames.Header(picture.rect));
    // One palette for the whole file would be smaller, but not all readers join it with transparency.
    if (frames.HavePalette()) file.Put("PLTE", frames.PaletteData(picture));
    if (picture.hasHoles) file.Put("tRNS", frames.TransparencyData());
    file.Put("IDAT", ChunkWriter::Data().Bytes(picture.data.data(), picture.data.size()));
    file.Put("IEND");
}

std::vector<std::uint8_t> Encode(const Animation& animation, const FrameProgress& progress) {
    const PngFrames frames(animation, PngFrames::Packing::Tight, progress);
    ChunkWriter file("\x8AMNG\r\n\x1A\n");
    file.Put("MHDR", Header(animation, frames));
    file.Put("TERM", EndlessLoop());
    file.PutComment(animation.comment);
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        const PngFrame& picture = frames.Get()[i];
        const std::int32_t delay = animation.frames[i].delay;
        // The first frame says everything: the loop comes back to it with the last one's values.
        if (i == 0 || delay != animation.frames[i - 1].delay) file.Put("FRAM", Delay(delay));
        file.Put("DEFI", Place(picture.rect));
        PutPicture(file, frames, picture);
    }
    file.Put("MEND");
    return file.Take();
}

} // namespace

std::vector<std::uint8_t> EncodeMng(const Animation& animation, std::string& error,
                                    const FrameProgress& progress) {
    return FileOrError([&] { return Encode(animation, progress); }, error);
}

} // namespace lumafold
