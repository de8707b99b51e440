#include <algorithm>
#include <optional>

#include "codecs/file_kinds.h"
#include "codecs/png_chunks.h"
#include "codecs/screens.h"

namespace lumafold {
namespace {

/// A picture in pieces, as a file of its own: what is told before the data, then the data.
struct Pieces {
    std::uint32_t width = 0, height = 0;
    ChunkWriter::Data header; ///< depth and what follows it in IHDR
    std::vector<Chunk> told;
    ChunkWriter::Data data;

    void TakeHeader(const Chunk& chunk) {
        chunk.Need(13);
        width = chunk.U32(0);
        height = chunk.U32(4);
        header.Bytes(chunk.data.subspan(8, 5));
    }
    void Tell(const Chunk& chunk) {
        if (chunk.type == "PLTE" || chunk.type == "tRNS") told.push_back(chunk);
    }
    std::vector<std::uint8_t> File(std::uint32_t fileWidth, std::uint32_t fileHeight) const {
        ChunkWriter file(kPngSignature);
        ChunkWriter::Data first;
        first.U32(fileWidth).U32(fileHeight).Bytes(header.Get());
        file.Put("IHDR", first);
        for (const Chunk& chunk : told)
            file.Put(chunk.type, ChunkWriter::Data().Bytes(chunk.data));
        file.Put("IDAT", data);
        file.Put("IEND");
        return file.Take();
    }
};

/// Where a picture goes, and how it meets what is there.
struct Placing {
    std::uint32_t left = 0, top = 0, width = 0, height = 0;
    bool replaces = false; ///< or is laid over

    Rect Area() const {
        const auto x = static_cast<std::int32_t>(left), y = static_cast<std::int32_t>(top);
        return {x, y, x + static_cast<std::int32_t>(width), y + static_cast<std::int32_t>(height)};
    }
};

/// A pixel with its alpha on top over one without.
PixelValue Over(PixelValue below, PixelValue pixel) {
    const PixelValue alpha = pixel >> 24, colour = pixel & 0xFFFFFF;
    if (alpha == 0) return below;
    if (alpha == 255) return colour;
    const PixelValue behind = below == kNoPixel ? 0xFFFFFF : below;
    return MakeColour(LayOver(RedOf(colour), alpha, RedOf(behind), 255),
                      LayOver(GreenOf(colour), alpha, GreenOf(behind), 255),
                      LayOver(BlueOf(colour), alpha, BlueOf(behind), 255));
}

class PngScreen {
public:
    PngScreen(std::uint32_t width, std::uint32_t height, const DecodeLimits& limits) : limits_(limits) {
        CheckSize(width, height, limits);
        shown_ = ShownScreen(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
    }

    ShownScreen& Shown() { return shown_; }

    void Draw(const Pieces& pieces, const Placing& placing) {
        CheckPlacing(placing);
        const std::vector<std::uint8_t> file = pieces.File(placing.width, placing.height);
        const std::vector<PixelValue> pixels = DecodePngPixels(file, limits_);
        shown_.Each(placing.Area(), [&](PixelValue& pixel, std::size_t i) {
            pixel = Over(placing.replaces ? ShownScreen::Cleared(pixel) : pixel, pixels[i]);
        });
    }

    void CheckPlacing(const Placing& placing) const {
        const std::uint64_t right = std::uint64_t{placing.left} + placing.width,
                            bottom = std::uint64_t{placing.top} + placing.height;
        if (placing.width == 0 || placing.height == 0 || right > static_cast<std::uint64_t>(shown_.width) ||
            bottom > static_cast<std::uint64_t>(shown_.height))
            throw DecodeError{"a frame lies outside the picture"};
    }

private:
    DecodeLimits limits_;
    ShownScreen shown_;
};

enum class Dispose : std::uint32_t { None = 0, Clear = 1, Restore = 2 };

class ApngPlayer {
public:
    ApngPlayer(std::span<const std::uint8_t> file, const DecodeLimits& limits, const OnScreen& onScreen)
        : chunks_(file), limits_(limits), onScreen_(onScreen) {}

    std::string Play() {
        Chunk chunk;
        while (chunks_.Next(chunk) && chunk.type != "IEND")
            Take(chunk);
        Finish();
        return comment_;
    }

private:
    void Take(const Chunk& chunk) {
        if (chunk.type == "IHDR") {
            pieces_.TakeHeader(chunk);
            screen_.emplace(pieces_.width, pieces_.height, limits_);
        } else if (!screen_) {
            throw DecodeError{"the file does not begin as it should"};
        } else if (chunk.type == "fcTL") {
            Finish();
            Control(chunk);
        } else if (chunk.type == "IDAT") {
            // Without a frame control before it, this is for those who know only still pictures.
            if (hasFrame_) pieces_.data.Bytes(chunk.data);
        } else if (chunk.type == "fdAT") {
            chunk.Need(4);
            if (hasFrame_) pieces_.data.Bytes(chunk.data.subspan(4));
        } else {
            if (chunk.type == "tEXt" || chunk.type == "iTXt") comment_ += chunk.Comment();
            pieces_.Tell(chunk);
        }
    }

    void Control(const Chunk& chunk) {
        chunk.Need(26);
        placing_ = {chunk.U32(12), chunk.U32(16), chunk.U32(4), chunk.U32(8), chunk.U8(25) == 0};
        screen_->CheckPlacing(placing_);
        const std::uint32_t ticks = chunk.U16(20), perSecond = chunk.U16(22) == 0 ? 100 : chunk.U16(22);
        delay_ = static_cast<std::int32_t>((ticks * 100 + perSecond / 2) / perSecond);
        dispose_ = static_cast<Dispose>(chunk.U8(24));
        hasFrame_ = true;
    }

    void Finish() {
        if (!hasFrame_) return;
        hasFrame_ = false;
        std::vector<PixelValue> before;
        if (dispose_ == Dispose::Restore) before = screen_->Shown().pixels;
        screen_->Draw(pieces_, placing_);
        onScreen_(screen_->Shown(), delay_);
        if (dispose_ == Dispose::Clear) screen_->Shown().Clear(placing_.Area());
        if (dispose_ == Dispose::Restore) screen_->Shown().pixels = std::move(before);
        pieces_.data = {};
    }

    ChunkReader chunks_;
    const DecodeLimits& limits_;
    const OnScreen& onScreen_;
    Pieces pieces_;
    std::optional<PngScreen> screen_;
    Placing placing_;
    std::int32_t delay_ = 0;
    Dispose dispose_ = Dispose::None;
    bool hasFrame_ = false;
    std::string comment_;
};

/// Only what files of low complexity hold: one picture after the other, each laid over those before it.
class MngPlayer {
public:
    MngPlayer(std::span<const std::uint8_t> file, const DecodeLimits& limits, const OnScreen& onScreen)
        : chunks_(file), limits_(limits), onScreen_(onScreen) {}

    std::string Play() {
        Chunk chunk;
        while (chunks_.Next(chunk) && chunk.type != "MEND")
            Take(chunk);
        return comment_;
    }

private:
    void Take(const Chunk& chunk) {
        if (chunk.type == "MHDR") {
            chunk.Need(12);
            screen_.emplace(chunk.U32(0), chunk.U32(4), limits_);
            ticksPerSecond_ = std::max<std::uint32_t>(chunk.U32(8), 1);
        } else if (!screen_) {
            throw DecodeError{"the file does not begin as it should"};
        } else if (picture_) {
            InPicture(chunk);
        } else if (chunk.type == "IHDR") {
            picture_.emplace();
            picture_->TakeHeader(chunk);
        } else if (chunk.type == "FRAM") {
            Framing(chunk);
        } else if (chunk.type == "DEFI") {
            chunk.Need(12);
            left_ = chunk.U32(4);
            top_ = chunk.U32(8);
        } else if (chunk.type == "tEXt" || chunk.type == "iTXt") {
            comment_ += chunk.Comment();
        } else if (chunk.type != "TERM" && (chunk.type.front() & 0x20) == 0) {
            throw DecodeError{"this MNG file uses " + std::string(chunk.type) + ", which is not supported"};
        }
    }

    void InPicture(const Chunk& chunk) {
        if (chunk.type == "IDAT") {
            picture_->data.Bytes(chunk.data);
        } else if (chunk.type == "IEND") {
            screen_->Draw(*picture_, {left_, top_, picture_->width, picture_->height, false});
            onScreen_(screen_->Shown(), delay_);
            picture_.reset();
        } else {
            picture_->Tell(chunk);
        }
    }

    void Framing(const Chunk& chunk) {
        constexpr std::uint32_t kAsBefore = 0, kFrameEach = 1;
        if (chunk.data.empty()) return;
        if (const std::uint32_t mode = chunk.U8(0); mode != kAsBefore && mode != kFrameEach)
            throw DecodeError{"this MNG file puts several pictures into a frame, which is not supported"};
        std::size_t at = 1;
        while (at < chunk.data.size() && chunk.data[at] != 0)
            ++at; // a name
        ++at;
        constexpr std::size_t kChanges = 4;
        if (at + kChanges > chunk.data.size() || chunk.U8(at) == kAsBefore) return;
        chunk.Need(at + kChanges + 4);
        const std::uint64_t ticks = std::min<std::uint32_t>(chunk.U32(at + kChanges), 0xFFFFFF);
        delay_ = static_cast<std::int32_t>((ticks * 100 + ticksPerSecond_ / 2) / ticksPerSecond_);
    }

    ChunkReader chunks_;
    const DecodeLimits& limits_;
    const OnScreen& onScreen_;
    std::optional<PngScreen> screen_;
    std::optional<Pieces> picture_;
    std::uint32_t ticksPerSecond_ = 1, left_ = 0, top_ = 0;
    std::int32_t delay_ = 0;
    std::string comment_;
};

} // namespace

bool IsAnimatedPng(std::span<const std::uint8_t> file) {
    ChunkReader chunks(file);
    Chunk chunk;
    while (chunks.Next(chunk) && chunk.type != "IDAT") {
        if (chunk.type == "acTL") return true;
    }
    return false;
}

std::string ShowApng(std::span<const std::uint8_t> file, const DecodeLimits& limits,
                     const OnScreen& onScreen) {
    return ApngPlayer(file, limits, onScreen).Play();
}

std::string ShowMng(std::span<const std::uint8_t> file, const DecodeLimits& limits,
                    const OnScreen& onScreen) {
    return MngPlayer(file, limits, onScreen).Play();
}

} // namespace lumafold
