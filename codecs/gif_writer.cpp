#include "codecs/gif_writer.h"

#include <algorithm>
#include <bit>
#include <span>

#include "codecs/frame_changes.h"
#include "codecs/lzw_encoder.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostSide = 65535;
constexpr std::int32_t kMostDelay = 65535;

class GifBytes {
public:
    void U8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void U16(std::int32_t value) {
        U8(static_cast<std::uint32_t>(value) & 0xFF);
        U8(static_cast<std::uint32_t>(value) >> 8 & 0xFF);
    }
    void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
    /// Cut into pieces of at most 255 bytes, each after its length, and ended by an empty one.
    void SubBlocks(std::span<const std::uint8_t> data) {
        while (!data.empty()) {
            const auto piece = data.first(std::min<std::size_t>(data.size(), 255));
            U8(static_cast<std::uint32_t>(piece.size()));
            bytes_.insert(bytes_.end(), piece.begin(), piece.end());
            data = data.subspan(piece.size());
        }
        U8(0);
    }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

/// One frame's picture data as it would go into the file.
struct PackedFrame {
    int transparent = -1; ///< -1 for none
    int codeBits = 2;
    std::vector<std::uint8_t> codes;
};

/// Which indexes a rectangle needs: those of pixels that change, those shown where nothing changes, and
/// holes.
struct Census {
    std::array<bool, 256> drawn{}, kept{};
    bool anyKept = false, holes = false;
};

Census Count(const Screen& screen, const Rect& rect) {
    Census census;
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x) {
            if (shown[x] == kNoPixel) {
                census.holes = true;
            } else {
                (changed[x] != 0 ? census.drawn : census.kept)[shown[x]] = true;
                census.anyKept |= changed[x] == 0;
            }
        }
    }
    return census;
}

/// An index no changing pixel needs, -1 when all are taken: the frame's own, else one that nothing on screen
/// has either, else any.
int ChooseTransparent(const Census& census, std::int32_t own, int tableSize) {
    const auto free = [&](int index) { return !census.drawn[static_cast<std::size_t>(index)]; };
    if (own >= 0 && own < tableSize && free(own)) return own;
    int choice = -1;
    for (int index = tableSize - 1; index >= 0; --index) {
        if (!free(index)) continue;
        const bool better = choice < 0 || !census.kept[static_cast<std::size_t>(index)] ||
                            census.kept[static_cast<std::size_t>(choice)];
        if (better) choice = index;
    }
    return choice;
}

enum class Kept { Drawn, Either };
/// A sample is four rows in thirty-two, and tells of the rest which way packs better.
enum class Rows { All, Sample };
constexpr std::int64_t kWorthSampling = 32 * 1024; // pixels

PackedFrame Pack(const Screen& screen, const Rect& rect, int transparent, Kept kept, Rows rows = Rows::All) {
    PackedFrame packed;
    std::vector<LzwPixel> pixels;
    pixels.reserve(static_cast<std::size_t>(RectWidth(rect)) * static_cast<std::size_t>(RectHeight(rect)));
    unsigned all = 0;
    const auto hole = static_cast<std::uint8_t>(transparent);
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        if (rows == Rows::Sample && (y - rect.top) / 4 % 8 != 0) continue;
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x) {
            LzwPixel pixel{static_cast<std::uint8_t>(shown[x]), static_cast<std::uint8_t>(shown[x])};
            if (changed[x] == 0 && transparent >= 0) {
                const bool open = shown[x] == kNoPixel || pixel.index == hole;
                if (open) pixel.index = hole;
                if (open || kept == Kept::Either) pixel.other = hole;
                if (pixel.other == hole) packed.transparent = transparent;
            }
            all |= static_cast<unsigned>(pixel.index) | pixel.other;
            pixels.push_back(pixel);
        }
    }
    // Fewer bits than the table has are enough when the higher entries do not occur.
    packed.codeBits = std::max(2, static_cast<int>(std::bit_width(all)));
    packed.codes = EncodeLzw(pixels, packed.codeBits);
    return packed;
}

/// Pixels that do not change may be drawn over with what is there or left out. Mostly the encoder knows best
/// which; but an index for what is left out may cost more than it saves, so both ways are tried.
PackedFrame PackBest(const Screen& screen, const Rect& rect, std::int32_t ownTransparent, int tableSize) {
    const Census census = Count(screen, rect);
    if (!census.anyKept && !census.holes) return Pack(screen, rect, -1, Kept::Drawn);
    const int transparent = ChooseTransparent(census, ownTransparent, tableSize);
    if (transparent < 0 || !census.anyKept) return Pack(screen, rect, transparent, Kept::Drawn);
    const auto packed = [&](Kept kept, Rows rows) { return Pack(screen, rect, transparent, kept, rows); };
    const bool large = std::int64_t{RectWidth(rect)} * RectHeight(rect) >= kWorthSampling;
    const Rows tried = large ? Rows::Sample : Rows::All;
    PackedFrame either = packed(Kept::Either, tried);
    PackedFrame drawn = packed(Kept::Drawn, tried);
    const bool leaveOut = either.codes.size() < drawn.codes.size();
    if (large) return packed(leaveOut ? Kept::Either : Kept::Drawn, Rows::All);
    return leaveOut ? std::move(either) : std::move(drawn);
}

void PutFrame(GifBytes& file, const PackedFrame& packed, const Rect& rect, std::int32_t delay) {
    constexpr std::uint32_t kLeaveInPlace = 1 << 2;
    file.Text("\x21\xF9\x04");
    file.U8(kLeaveInPlace | (packed.transparent >= 0 ? 1 : 0));
    file.U16(std::clamp(delay, 0, kMostDelay));
    file.U8(static_cast<std::uint32_t>(std::max(packed.transparent, 0)));
    file.U8(0);
    file.U8(0x2C);
    file.U16(rect.left);
    file.U16(rect.top);
    file.U16(RectWidth(rect));
    file.U16(RectHeight(rect));
    file.U8(0);
    file.U8(static_cast<std::uint32_t>(packed.codeBits));
    file.SubBlocks(packed.codes);
}

void PutHead(GifBytes& file, const Animation& animation, int bits) {
    const auto tableBits = static_cast<std::uint32_t>(bits);
    file.Text("GIF89a");
    file.U16(animation.width);
    file.U16(animation.height);
    file.U8(0x80 | 7U << 4 | (tableBits - 1));
    file.U8(0);
    file.U8(0);
    for (std::size_t i = 0; i < std::size_t{1} << tableBits; ++i) {
        file.U8(animation.palette[i].red);
        file.U8(animation.palette[i].green);
        file.U8(animation.palette[i].blue);
    }
    constexpr std::string_view kEndlessLoop("\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00", 19);
    file.Text(kEndlessLoop);
    if (!animation.comment.empty()) {
        file.Text("\x21\xFE");
        file.SubBlocks(
            {reinterpret_cast<const std::uint8_t*>(animation.comment.data()), animation.comment.size()});
    }
}

std::vector<std::uint8_t> Encode(const Animation& animation, const FrameProgress& progress) {
    CheckAnimation(animation, kMostSide, "GIF cannot hold sides above 65535 pixels");
    if (HasTrueColour(animation)) throw AnimationError{"GIF cannot hold true-colour frames"};
    const FrameReader reader(animation, FrameReader::Values::Indexes);
    const int tableBits = TableBits(animation, reader);
    GifBytes file;
    PutHead(file, animation, tableBits);
    Screen screen(animation.width, animation.height);
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        GoOnWith(i, animation.frames.size(), progress);
        const AnimationFrame& frame = animation.frames[i];
        const FramePixels pixels = reader.Read(frame);
        const Rect changed = screen.Show(pixels);
        // The first frame stays whole: viewers take it for the picture itself.
        const Rect rect = i == 0 ? Rect{0, 0, pixels.width, pixels.height} : changed;
        PutFrame(file, PackBest(screen, rect, frame.transparentIndex, 1 << tableBits), rect, frame.delay);
    }
    file.U8(0x3B);
    return file.Take();
}

} // namespace

std::vector<std::uint8_t> EncodeGif(const Animation& animation, std::string& error,
                                    const FrameProgress& progress) {
    return FileOrError([&] { return Encode(animation, progress); }, error);
}

} // namespace lumafold
