#include "codecs/png_frames.h"

#include <bit>
#include <new>

#include <zlib.h>

#include "codecs/png_writer.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostSide = 1000000; // libpng's own bound, on either side of the file
constexpr std::uint32_t kPaletteType = 3, kColourType = 2;

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Well-formed enough to be told from single-byte text, in which such sequences hardly occur.
bool IsUtf8(const std::string& text) {
    int following = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (following > 0) {
            if ((byte & 0xC0) != 0x80) return false;
            --following;
        } else if (byte >= 0x80) {
            following = std::countl_one(byte) - 1;
            if (following < 1 || following > 3) return false;
        }
    }
    return following == 0;
}

} // namespace

ChunkWriter::Data& ChunkWriter::Data::U8(std::uint32_t value) {
    bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
}

ChunkWriter::Data& ChunkWriter::Data::U16(std::uint32_t value) { return U8(value >> 8).U8(value); }

ChunkWriter::Data& ChunkWriter::Data::U32(std::uint32_t value) { return U16(value >> 16).U16(value); }

ChunkWriter::Data& ChunkWriter::Data::Bytes(const void* bytes, std::size_t length) {
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    bytes_.insert(bytes_.end(), first, first + length);
    return *this;
}

void ChunkWriter::Put(std::string_view type, const Data& data) {
    Data chunk;
    chunk.U32(static_cast<std::uint32_t>(data.Get().size()));
    chunk.Bytes(type.data(), type.size()).Bytes(data.Get().data(), data.Get().size());
    const std::size_t summed = chunk.Get().size() - 4; // all but the length
    chunk.U32(static_cast<std::uint32_t>(crc32(0, chunk.Get().data() + 4, static_cast<uInt>(summed))));
    bytes_.insert(bytes_.end(), chunk.Get().begin(), chunk.Get().end());
}

void ChunkWriter::PutComment(const std::string& text) {
    constexpr std::string_view kKeyword("Comment\0", 8);
    constexpr std::string_view kPlainUtf8("\0\0\0\0",
                                          4); // not compressed, no language, no translated keyword
    // A zero byte would end a reader's string, and is no text anyway.
    const std::string shown = text.substr(0, text.find('\0'));
    if (shown.empty()) return;
    const bool utf8 = !IsAscii(shown) && IsUtf8(shown);
    Data data;
    data.Bytes(kKeyword.data(), kKeyword.size());
    if (utf8) data.Bytes(kPlainUtf8.data(), kPlainUtf8.size());
    data.Bytes(shown.data(), shown.size());
    Put(utf8 ? "iTXt" : "tEXt", data);
}

PngFrames::PngFrames(const Animation& animation, Packing packing, const FrameProgress& progress)
    : packing_(packing) {
    CheckAnimation(animation, kMostSide, "PNG cannot hold sides above 1000000 pixels");
    auto values = HasTrueColour(animation) ? FrameReader::Values::Colours : FrameReader::Values::Indexes;
    if (!Survey(animation, values)) {
        // A full palette has no room for holes where nothing was ever drawn. Colours hardly run out.
        values = FrameReader::Values::Colours;
        if (!Survey(animation, values))
            throw AnimationError{"every colour is in use, and none left for holes"};
    }
    Cut(animation, values, progress);
}

/// Reads every frame once to know which values occur. False when holes are needed and cannot be had.
bool PngFrames::Survey(const Animation& animation, FrameReader::Values values) {
    const bool palette = values == FrameReader::Values::Indexes;
    const FrameReader reader(animation, values);
    std::vector<bool> used(palette ? 256 : std::size_t{1} << 24);
    bool leavesPixels = false;
    for (const AnimationFrame& frame : animation.frames) {
        const FramePixels pixels = reader.Read(frame);
        const bool first = &frame == &animation.frames.front();
        leavesPixels |= first && (pixels.width < animation.width || pixels.height < animation.height);
        for (const PixelValue value : pixels.values) {
            if (value == kNoPixel) {
                leavesPixels = true;
            } else {
                used[value] = true;
            }
        }
    }
    depth_ = 24;
    colours_.clear();
    if (palette) {
        const int bits = TableBits(animation, reader);
        depth_ =
            packing_ == Packing::Tight ? static_cast<int>(std::bit_ceil(static_cast<unsigned>(bits))) : 8;
        colours_.assign(animation.palette.begin(), animation.palette.begin() + (std::ptrdiff_t{1} << bits));
    }
    return ChooseTransparent(animation, used) || !leavesPixels;
}

/// The frames' own transparent value where no frame draws it, else one that none draws.
bool PngFrames::ChooseTransparent(const Animation& animation, const std::vector<bool>& used) {
    transparent_ = kNoPixel;
    const std::size_t most = HavePalette() ? std::size_t{1} << depth_ : used.size();
    for (const AnimationFrame& frame : animation.frames) {
        const auto own = static_cast<PixelValue>(frame.transparentIndex);
        if (transparent_ == kNoPixel && own < most && !used[own]) transparent_ = own;
    }
    for (PixelValue value = 0; transparent_ == kNoPixel && value < most; ++value) {
        if (!used[value]) transparent_ = value;
    }
    if (transparent_ == kNoPixel) return false;
    if (HavePalette()) {
        colours_.resize(std::max(colours_.size(), std::size_t{transparent_} + 1));
        std::swap(colours_[0], colours_[transparent_]); // see IndexInFile
    }
    return true;
}

/// The transparent entry changes places with the first one, so that the chunk for it is one byte long.
PixelValue PngFrames::IndexInFile(PixelValue index) const {
    if (transparent_ == kNoPixel || (index != 0 && index != transparent_)) return index;
    return transparent_ - index;
}

void PngFrames::Cut(const Animation& animation, FrameReader::Values values, const FrameProgress& progress) {
    const FrameReader reader(animation, values);
    Screen screen(animation.width, animation.height);
    for (const AnimationFrame& frame : animation.frames) {
        GoOnWith(frames_.size(), animation.frames.size(), progress);
        const Rect changed = screen.Show(reader.Read(frame));
        // The first frame is whole: it is what is seen where animations are not understood.
        frames_.push_back(frames_.empty() ? Pack(screen, screen.Whole(), Kept::Drawn)
                                          : PackBest(screen, changed));
    }
}

/// Pixels that do not change may be drawn once more or left out; which packs better depends on both pictures.
PngFrame PngFrames::PackBest(const Screen& screen, const Rect& rect) const {
    PngFrame drawn = Pack(screen, rect, Kept::Drawn);
    if (transparent_ == kNoPixel) return drawn;
    PngFrame leftOut = Pack(screen, rect, Kept::LeftOut);
    return leftOut.hasHoles && leftOut.data.size() < drawn.data.size() ? std::move(leftOut)
                                                                       : std::move(drawn);
}

PngFrame PngFrames::Pack(const Screen& screen, const Rect& rect, Kept kept) const {
    PngFrame frame;
    frame.rect = rect;
    const std::size_t each = HavePalette() ? 1 : 3;
    const auto width = static_cast<std::size_t>(RectWidth(rect));
    std::vector<std::uint8_t> pixels(width * static_cast<std::size_t>(RectHeight(rect)) * each);
    std::uint8_t* to = pixels.data();
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x, to += each) {
            const bool hole = shown[x] == kNoPixel || (kept == Kept::LeftOut && changed[x] == 0);
            frame.hasHoles |= hole;
            const PixelValue value = hole ? transparent_ : shown[x];
            if (each == 1) {
                to[0] = static_cast<std::uint8_t>(IndexInFile(value));
                frame.colours = std::max(frame.colours, std::size_t{to[0]} + 1);
            } else {
                to[0] = static_cast<std::uint8_t>(RedOf(value));
                to[1] = static_cast<std::uint8_t>(GreenOf(value));
                to[2] = static_cast<std::uint8_t>(BlueOf(value));
            }
        }
    }
    const PngRows rows{RectWidth(rect), RectHeight(rect), depth_, pixels.data()};
    if (!CompressPngRows(rows, frame.data)) throw std::bad_alloc();
    return frame;
}

bool PngFrames::HaveHoles() const {
    return std::any_of(frames_.begin(), frames_.end(), [](const PngFrame& frame) { return frame.hasHoles; });
}

ChunkWriter::Data PngFrames::Header(const Rect& rect) const {
    const auto bits = static_cast<std::uint32_t>(HavePalette() ? depth_ : 8);
    ChunkWriter::Data data;
    data.U32(static_cast<std::uint32_t>(RectWidth(rect))).U32(static_cast<std::uint32_t>(RectHeight(rect)));
    data.U8(bits).U8(HavePalette() ? kPaletteType : kColourType);
    return data.U8(0).U8(0).U8(0);
}

ChunkWriter::Data PngFrames::PaletteData() const {
    return ChunkWriter::Data().Bytes(colours_.data(), colours_.size() * sizeof(Rgb));
}

ChunkWriter::Data PngFrames::PaletteData(const PngFrame& frame) const {
    return ChunkWriter::Data().Bytes(colours_.data(), frame.colours * sizeof(Rgb));
}

ChunkWriter::Data PngFrames::TransparencyData() const {
    ChunkWriter::Data data;
    if (HavePalette()) return data.U8(0);
    return data.U16(RedOf(transparent_)).U16(GreenOf(transparent_)).U16(BlueOf(transparent_));
}

} // namespace lumafold
