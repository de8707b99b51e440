#include "hosts/codecs/gif_writer.h"

#include <algorithm>
#include <bit>
#include <new>
#include <optional>
#include <span>

#include "hosts/codecs/lzw_encoder.h"
#include "image/row_view.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostSide = 65535;
constexpr std::int32_t kMostDelay = 65535;

/// Why an animation cannot be written.
struct GifError {
    const char* text;
};

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

/// A frame's pixels, one byte each, cut to the animation's size.
struct FrameIndexes {
    std::int32_t width, height;
    int transparent; ///< -1 for none
    std::vector<std::uint8_t> indexes;

    std::uint8_t At(std::int32_t x, std::int32_t y) const {
        return indexes[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                       static_cast<std::size_t>(x)];
    }
    bool Covers(std::int32_t x, std::int32_t y) const { return At(x, y) != transparent; }
};

FrameIndexes ReadFrame(const Animation& animation, const AnimationFrame& frame) {
    const LockedDib dib(frame.image.Get());
    if (!dib) throw GifError{"a frame of the animation has no picture"};
    if (dib->biBitCount > 8) throw GifError{"GIF cannot hold true-colour frames"};
    FrameIndexes read{std::min(dib->biWidth, animation.width),
                      std::min(dib->biHeight, animation.height),
                      frame.transparentIndex <= 255 ? std::max(frame.transparentIndex, -1) : -1,
                      {}};
    if (read.width < 1 || read.height < 1) throw GifError{"a frame of the animation has no pixels"};
    const auto width = static_cast<std::size_t>(read.width);
    read.indexes.resize(width * static_cast<std::size_t>(read.height));
    const ConstRowView rows(dib.Get());
    std::uint8_t* out = read.indexes.data();
    for (std::int32_t y = 0; y < read.height; ++y, out += width) {
        if (rows.Bits() == 8) {
            std::memcpy(out, rows.Row(y), width);
            continue;
        }
        for (std::int32_t x = 0; x < read.width; ++x) {
            out[x] = static_cast<std::uint8_t>(DibGetPixel(dib.Get(), x, y));
        }
    }
    return read;
}

/// What a viewer sees so far, as table indexes.
class Screen {
public:
    explicit Screen(const Animation& animation)
        : width_(static_cast<std::size_t>(animation.width)),
          shown_(width_ * static_cast<std::size_t>(animation.height), kNothing) {
        // Entries of one colour look the same, whichever of them a pixel names.
        for (std::size_t i = 0; i < 256; ++i) {
            const auto first =
                std::find(animation.palette.begin(), animation.palette.end(), animation.palette[i]);
            look_[i] = static_cast<std::uint8_t>(first - animation.palette.begin());
        }
    }

    /// The index shown, or none where nothing has been drawn yet.
    std::optional<std::uint8_t> At(std::int32_t x, std::int32_t y) const {
        const std::int16_t shown = shown_[Place(x, y)];
        if (shown == kNothing) return std::nullopt;
        return static_cast<std::uint8_t>(shown);
    }
    bool Changes(const FrameIndexes& frame, std::int32_t x, std::int32_t y) const {
        if (!frame.Covers(x, y)) return false;
        const auto shown = At(x, y);
        return !shown || look_[*shown] != look_[frame.At(x, y)];
    }
    void Show(const FrameIndexes& frame) {
        for (std::int32_t y = 0; y < frame.height; ++y) {
            for (std::int32_t x = 0; x < frame.width; ++x) {
                if (Changes(frame, x, y)) shown_[Place(x, y)] = frame.At(x, y);
            }
        }
    }

private:
    static constexpr std::int16_t kNothing = -1;
    std::size_t Place(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y) * width_ + static_cast<std::size_t>(x);
    }

    std::size_t width_;
    std::vector<std::int16_t> shown_;
    std::array<std::uint8_t, 256> look_{};
};

/// The smallest rectangle around what changes. A frame that changes nothing keeps one pixel, for its delay's
/// sake.
Rect ChangedRect(const Screen& screen, const FrameIndexes& frame) {
    Rect changed{frame.width, frame.height, 0, 0};
    for (std::int32_t y = 0; y < frame.height; ++y) {
        for (std::int32_t x = 0; x < frame.width; ++x) {
            if (!screen.Changes(frame, x, y)) continue;
            changed = {std::min(changed.left, x), std::min(changed.top, y), std::max(changed.right, x + 1),
                       std::max(changed.bottom, y + 1)};
        }
    }
    return changed.right == 0 ? Rect{0, 0, 1, 1} : changed;
}

enum class Unchanged { Drawn, Transparent };

/// One frame's picture data as it would go into the file.
struct PackedFrame {
    bool transparent = false; ///< whether the transparent index occurs
    int codeBits = 2;
    std::vector<std::uint8_t> codes;
};

/// Pixels that do not change may be drawn over with what is there or left out; which packs better depends on
/// both pictures.
PackedFrame Pack(const Screen& screen, const FrameIndexes& frame, const Rect& rect, Unchanged unchanged) {
    PackedFrame packed;
    std::vector<std::uint8_t> indexes;
    indexes.reserve(static_cast<std::size_t>(RectWidth(&rect)) * static_cast<std::size_t>(RectHeight(&rect)));
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        for (std::int32_t x = rect.left; x < rect.right; ++x) {
            std::uint8_t index = frame.At(x, y);
            if (frame.transparent >= 0 && !screen.Changes(frame, x, y)) {
                const auto shown = screen.At(x, y);
                const bool draw = unchanged == Unchanged::Drawn && shown;
                index = draw ? *shown : static_cast<std::uint8_t>(frame.transparent);
            }
            packed.transparent = packed.transparent || index == frame.transparent;
            indexes.push_back(index);
        }
    }
    // Fewer bits than the table has are enough when the higher entries do not occur.
    const unsigned highest = *std::max_element(indexes.begin(), indexes.end());
    packed.codeBits = std::max(2, static_cast<int>(std::bit_width(highest)));
    packed.codes = EncodeLzw(indexes, packed.codeBits);
    return packed;
}

PackedFrame PackBest(const Screen& screen, const FrameIndexes& frame, const Rect& rect) {
    PackedFrame drawn = Pack(screen, frame, rect, Unchanged::Drawn);
    if (frame.transparent < 0) return drawn;
    PackedFrame leftOut = Pack(screen, frame, rect, Unchanged::Transparent);
    return leftOut.codes.size() < drawn.codes.size() ? std::move(leftOut) : std::move(drawn);
}

void PutFrame(GifBytes& file, const PackedFrame& packed, const Rect& rect, std::int32_t delay,
              int transparent) {
    constexpr std::uint32_t kLeaveInPlace = 1 << 2;
    file.Text("\x21\xF9\x04");
    file.U8(kLeaveInPlace | (packed.transparent ? 1 : 0));
    file.U16(std::clamp(delay, 0, kMostDelay));
    file.U8(packed.transparent ? static_cast<std::uint32_t>(transparent) : 0);
    file.U8(0);
    file.U8(0x2C);
    file.U16(rect.left);
    file.U16(rect.top);
    file.U16(RectWidth(&rect));
    file.U16(RectHeight(&rect));
    file.U8(0);
    file.U8(static_cast<std::uint32_t>(packed.codeBits));
    file.SubBlocks(packed.codes);
}

/// As the task said, but never too few for the indexes that occur: fixed palettes are searched beyond their
/// count.
int TableBits(const Animation& animation) {
    unsigned highest = 0;
    for (const AnimationFrame& frame : animation.frames) {
        const FrameIndexes read = ReadFrame(animation, frame);
        highest = std::max<unsigned>(highest, *std::max_element(read.indexes.begin(), read.indexes.end()));
    }
    return std::max({std::clamp(animation.paletteBits, 1, 8), static_cast<int>(std::bit_width(highest)), 1});
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

void CheckAnimation(const Animation& animation) {
    if (animation.frames.empty()) throw GifError{"the animation has no frames"};
    if (animation.width < 1 || animation.height < 1) throw GifError{"the animation has no pixels"};
    if (animation.width > kMostSide || animation.height > kMostSide) {
        throw GifError{"GIF cannot hold sides above 65535 pixels"};
    }
}

std::vector<std::uint8_t> Encode(const Animation& animation) {
    CheckAnimation(animation);
    const int tableBits = TableBits(animation);
    GifBytes file;
    PutHead(file, animation, tableBits);
    Screen screen(animation);
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        FrameIndexes frame = ReadFrame(animation, animation.frames[i]);
        // An index the table has not got is no pixel's either, and must not be written for one.
        if (frame.transparent >= 1 << tableBits) frame.transparent = -1;
        // The first frame stays whole: viewers take it for the picture itself.
        const Rect rect = i == 0 ? Rect{0, 0, frame.width, frame.height} : ChangedRect(screen, frame);
        PutFrame(file, PackBest(screen, frame, rect), rect, animation.frames[i].delay, frame.transparent);
        screen.Show(frame);
    }
    file.U8(0x3B);
    return file.Take();
}

} // namespace

std::vector<std::uint8_t> EncodeGif(const Animation& animation, std::string& error) {
    error.clear();
    try {
        return Encode(animation);
    } catch (const GifError& failure) {
        error = failure.text;
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory for the GIF file";
    }
    return {};
}

} // namespace lumafold
