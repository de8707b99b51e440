#include "tests/hosts/animation_player.h"

#include <gif_lib.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace lumafold::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t NumberAt(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t length) {
    std::uint32_t value = 0;
    for (; length > 0; --length, ++at)
        value = value << 8 | (at < bytes.size() ? bytes[at] : throw std::runtime_error("too short"));
    return value;
}

struct Chunk {
    std::string type;
    Bytes data;

    std::uint32_t Number(std::size_t at, std::size_t length) const { return NumberAt(data, at, length); }
    int Int(std::size_t at) const { return static_cast<int>(Number(at, 4)); }
};

std::uint32_t Checksum(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(crc32(0, bytes.data(), static_cast<unsigned>(bytes.size())));
}

void Require(bool holds, const char* offence) {
    if (!holds) throw std::runtime_error(offence);
}

std::vector<Chunk> Chunks(std::span<const std::uint8_t> file, const char* signature) {
    Require(file.size() > 8 && std::memcmp(file.data(), signature, 8) == 0, "signature");
    std::vector<Chunk> chunks;
    for (std::span rest = file.subspan(8); !rest.empty();) {
        const std::size_t length = NumberAt(rest, 0, 4);
        Require(rest.size() >= 12 && rest.size() - 12 >= length, "chunk length");
        const auto summed = rest.subspan(4, length + 4);
        Require(NumberAt(rest, length + 8, 4) == Checksum(summed), "checksum");
        chunks.push_back(
            {std::string(summed.begin(), summed.begin() + 4), Bytes(summed.begin() + 4, summed.end())});
        rest = rest.subspan(length + 12);
    }
    return chunks;
}

void Append(Bytes& file, const std::string& type, const Bytes& data) {
    const auto number = [&](std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8)
            file.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    number(static_cast<std::uint32_t>(data.size()));
    const auto start = static_cast<std::ptrdiff_t>(file.size());
    file.insert(file.end(), type.begin(), type.end());
    file.insert(file.end(), data.begin(), data.end());
    number(Checksum({file.begin() + start, file.end()}));
}

/// A picture inside, gathered until it is complete.
struct Still {
    Bytes header, palette, transparency, rows;

    /// kNoPixel for holes.
    std::vector<PixelValue> Decode(int width, int height) const {
        Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
        Append(file, "IHDR", header);
        if (!palette.empty()) Append(file, "PLTE", palette);
        if (!transparency.empty()) Append(file, "tRNS", transparency);
        Append(file, "IDAT", rows);
        Append(file, "IEND", {});
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        Require(png_image_begin_read_from_memory(&image, file.data(), file.size()) != 0, "picture's head");
        image.format = PNG_FORMAT_RGBA;
        Bytes bytes(PNG_IMAGE_SIZE(image));
        const bool read = png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) != 0;
        png_image_free(&image);
        Require(read && image.warning_or_error == 0, "picture's rows");
        Require(static_cast<int>(image.width) == width && static_cast<int>(image.height) == height, "size");
        std::vector<PixelValue> pixels;
        for (const std::uint8_t* at = bytes.data(); at != bytes.data() + bytes.size(); at += 4) {
            Require(at[3] == 0 || at[3] == 255, "half transparent pixel");
            pixels.push_back(at[3] == 0 ? kNoPixel : MakeColour(at[0], at[1], at[2]));
        }
        return pixels;
    }
};

class Canvas {
public:
    explicit Canvas(Played& played)
        : played_(played), screen_(static_cast<std::size_t>(played.width * played.height), kNoPixel) {}

    void Show(PlayedPicture picture, const std::vector<PixelValue>& pixels, bool over) {
        Require(picture.left >= 0 && picture.top >= 0 && picture.width > 0 && picture.height > 0 &&
                    picture.left + picture.width <= played_.width &&
                    picture.top + picture.height <= played_.height,
                "rectangle leaves the screen");
        for (int i = 0; i < picture.width * picture.height; ++i) {
            const int x = picture.left + i % picture.width, y = picture.top + i / picture.width;
            const PixelValue pixel = pixels.at(static_cast<std::size_t>(i));
            if (pixel != kNoPixel || !over) screen_[static_cast<std::size_t>(y * played_.width + x)] = pixel;
        }
        picture.screen = screen_;
        played_.pictures.push_back(std::move(picture));
    }
    void Show(PlayedPicture picture, const Still& still, bool over) {
        picture.transparent = still.transparency.empty() ? -1 : 0;
        Show(picture, still.Decode(picture.width, picture.height), over);
    }

private:
    Played& played_;
    std::vector<PixelValue> screen_;
};

void ReadText(const Chunk& chunk, Played& played) {
    const std::string text(chunk.data.begin(), chunk.data.end());
    const std::string keyword =
        chunk.type == "iTXt" ? std::string("Comment\0\0\0\0\0", 12) : std::string("Comment\0", 8);
    Require(text.starts_with(keyword), "keyword");
    played.comment = text.substr(keyword.size());
}

void ReadHeader(const Chunk& chunk, Played& played) {
    played.depth = static_cast<int>(chunk.Number(8, 1));
    played.colourType = static_cast<int>(chunk.Number(9, 1));
}

class ApngPlayer {
public:
    explicit ApngPlayer(Played& played) : played_(played) {}

    void Play(const std::vector<Chunk>& chunks) {
        Require(chunks.front().type == "IHDR" && chunks.back().type == "IEND", "first or last chunk");
        played_.width = chunks.front().Int(0);
        played_.height = chunks.front().Int(4);
        ReadHeader(chunks.front(), played_);
        still_.header = chunks.front().data;
        Canvas canvas(played_);
        for (const Chunk& chunk : chunks) {
            if (chunk.type == "fcTL" || chunk.type == "IEND") Finish(canvas);
            Take(chunk);
        }
    }

private:
    void Finish(Canvas& canvas) {
        if (still_.rows.empty()) return;
        Require(!control_.data.empty(), "rows without their control");
        const Chunk& c = control_;
        Require(c.Number(24, 1) == 0, "disposal");
        Require(c.Number(22, 2) == 100, "ticks of a delay");
        const PlayedPicture picture{c.Int(12), c.Int(16), c.Int(4), c.Int(8),
                                    static_cast<long>(c.Number(20, 2))};
        if (played_.pictures.empty()) {
            Require(picture.width == played_.width && picture.height == played_.height, "first frame");
        }
        std::copy_n(c.data.begin() + 4, 8, still_.header.begin());
        canvas.Show(picture, still_, c.Number(25, 1) == 1);
        still_.rows.clear();
    }
    void Take(const Chunk& chunk) {
        if (chunk.type == "acTL") {
            Require(control_.data.empty(), "order");
            played_.frames = chunk.Int(0);
            played_.endless = chunk.Int(4) == 0;
        } else if (chunk.type == "fcTL") {
            Require(chunk.Number(0, 4) == sequence_++, "sequence");
            control_ = chunk;
        } else if (chunk.type == "fdAT") {
            Require(chunk.Number(0, 4) == sequence_++, "sequence");
            Require(!played_.pictures.empty(), "the first frame is not the still one");
            still_.rows.insert(still_.rows.end(), chunk.data.begin() + 4, chunk.data.end());
        } else if (chunk.type == "IDAT") {
            Require(played_.frames > 0, "order");
            still_.rows.insert(still_.rows.end(), chunk.data.begin(), chunk.data.end());
        } else if (chunk.type == "PLTE") {
            still_.palette = chunk.data;
        } else if (chunk.type == "tRNS") {
            still_.transparency = chunk.data;
        } else if (chunk.type == "tEXt" || chunk.type == "iTXt") {
            ReadText(chunk, played_);
        }
    }

    Played& played_;
    Chunk control_;
    Still still_;
    std::uint32_t sequence_ = 0;
};

class MngPlayer {
public:
    explicit MngPlayer(Played& played) : played_(played) {}

    void Play(const std::vector<Chunk>& chunks) {
        Require(chunks.front().type == "MHDR" && chunks.back().type == "MEND", "first or last chunk");
        const Chunk& head = chunks.front();
        played_.width = head.Int(0);
        played_.height = head.Int(4);
        Require(head.Int(8) == 100, "ticks per second");
        played_.frames = head.Int(16);
        const std::uint32_t profile = head.Number(24, 4);
        Require((profile & 0x43) == 0x43 && (profile & ~0xCBU) == 0, "profile");
        transparencyTold_ = (profile & 8) != 0;
        Canvas canvas(played_);
        for (const Chunk& chunk : chunks)
            Take(chunk, canvas);
        long duration = 0;
        for (const PlayedPicture& picture : played_.pictures)
            duration += picture.delay;
        Require(head.Int(20) == std::min(duration, 0x7FFFFFFFL), "play time");
    }

private:
    void Take(const Chunk& chunk, Canvas& canvas) {
        if (chunk.type == "TERM") {
            played_.endless = chunk.Number(0, 1) == 3 && chunk.Int(6) == 0x7FFFFFFF;
        } else if (chunk.type == "tEXt" || chunk.type == "iTXt") {
            ReadText(chunk, played_);
        } else if (chunk.type == "FRAM") {
            Require(chunk.data.size() == 10 && chunk.Number(0, 4) == 0x01000200 && chunk.Number(4, 2) == 0,
                    "framing");
            place_.delay = chunk.Int(6);
        } else if (chunk.type == "DEFI") {
            Require(chunk.data.size() == 12 && chunk.Number(0, 4) == 0, "definition");
            place_.left = chunk.Int(4);
            place_.top = chunk.Int(8);
        } else if (chunk.type == "IHDR") {
            still_ = {};
            still_.header = chunk.data;
            ReadHeader(chunk, played_);
            place_.width = chunk.Int(0);
            place_.height = chunk.Int(4);
        } else if (chunk.type == "PLTE") {
            still_.palette = chunk.data;
        } else if (chunk.type == "tRNS") {
            Require(transparencyTold_, "profile without transparency");
            still_.transparency = chunk.data;
        } else if (chunk.type == "IDAT") {
            still_.rows = chunk.data;
        } else if (chunk.type == "IEND") {
            Require(place_.delay >= 0, "picture without a delay");
            canvas.Show(place_, still_, true);
        }
    }

    Played& played_;
    Still still_;
    bool transparencyTold_ = false;
    PlayedPicture place_{.delay = -1};
};

struct GifSource {
    explicit GifSource(std::span<const std::uint8_t> file) : left(file), gif(DGifOpen(this, Read, nullptr)) {
        Require(gif != nullptr, "head");
    }
    GifSource(const GifSource&) = delete;
    GifSource& operator=(const GifSource&) = delete;
    ~GifSource() { DGifCloseFile(gif, nullptr); }
    static int Read(GifFileType* gif, GifByteType* to, int bytes) {
        auto& left = static_cast<GifSource*>(gif->UserData)->left;
        const std::size_t length = std::min(left.size(), static_cast<std::size_t>(bytes));
        std::copy_n(left.begin(), length, to);
        left = left.subspan(length);
        return static_cast<int>(length);
    }
    std::span<const std::uint8_t> left;
    GifFileType* gif;
};

/// Codes that never come to their end mark are drawn all the same, but only by forgiving viewers.
void RequireEndCodes(std::span<const std::uint8_t> file) {
    GifSource source(file);
    GifRecordType kind = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(source.gif, &kind) == GIF_OK && kind != TERMINATE_RECORD_TYPE) {
        int code = 0;
        GifByteType* data = nullptr;
        if (kind == IMAGE_DESC_RECORD_TYPE) {
            Require(DGifGetImageDesc(source.gif) == GIF_OK, "frame's head");
            while (code >= 0)
                Require(DGifGetLZCodes(source.gif, &code) == GIF_OK, "no end code");
        } else {
            Require(DGifGetExtension(source.gif, &code, &data) == GIF_OK, "extension");
            while (data != nullptr)
                Require(DGifGetExtensionNext(source.gif, &data) == GIF_OK, "extension");
        }
    }
    Require(kind == TERMINATE_RECORD_TYPE && source.left.empty(), "end of the file");
}

void ReadExtensions(const SavedImage& image, Played& played) {
    int kind = 0;
    std::string application;
    for (int i = 0; i < image.ExtensionBlockCount; ++i) {
        const ExtensionBlock& block = image.ExtensionBlocks[i];
        const std::string text(block.Bytes, block.Bytes + block.ByteCount);
        if (block.Function != CONTINUE_EXT_FUNC_CODE) kind = block.Function;
        if (kind == COMMENT_EXT_FUNC_CODE) played.comment += text;
        if (kind == APPLICATION_EXT_FUNC_CODE) application += text;
    }
    played.endless |= application == std::string("NETSCAPE2.0\1\0\0", 14);
}

void PlayFrames(std::span<const std::uint8_t> file, Played& played) {
    const GifSource source(file);
    GifFileType* gif = source.gif;
    Require(DGifSlurp(gif) == GIF_OK && gif->SColorMap != nullptr, "frames");
    played.width = gif->SWidth;
    played.height = gif->SHeight;
    played.depth = gif->SColorMap->BitsPerPixel;
    played.frames = gif->ImageCount;
    Canvas canvas(played);
    for (int f = 0; f < gif->ImageCount; ++f) {
        const SavedImage& image = gif->SavedImages[f];
        const GifImageDesc& at = image.ImageDesc;
        ReadExtensions(image, played);
        GraphicsControlBlock control{};
        Require(DGifSavedExtensionToGCB(gif, f, &control) == GIF_OK, "frame without control");
        Require(control.DisposalMode == DISPOSE_DO_NOT, "disposal");
        std::vector<PixelValue> pixels;
        for (int i = 0; i < at.Width * at.Height; ++i) {
            const int index = image.RasterBits[i];
            Require(index < gif->SColorMap->ColorCount, "index without a colour");
            const GifColorType& c = gif->SColorMap->Colors[index];
            const bool hole = index == control.TransparentColor;
            pixels.push_back(hole ? kNoPixel : MakeColour(c.Red, c.Green, c.Blue));
        }
        canvas.Show({at.Left, at.Top, at.Width, at.Height, control.DelayTime, control.TransparentColor},
                    pixels, true);
    }
}

template <typename Player>
Played Play(Player player) {
    Played played;
    try {
        player(played);
    } catch (const std::exception& offence) {
        played.problem = offence.what();
    }
    return played;
}

} // namespace

Played PlayApng(std::span<const std::uint8_t> file) {
    return Play([&](Played& played) { ApngPlayer(played).Play(Chunks(file, "\x89PNG\r\n\x1A\n")); });
}
Played PlayMng(std::span<const std::uint8_t> file) {
    return Play([&](Played& played) { MngPlayer(played).Play(Chunks(file, "\x8AMNG\r\n\x1A\n")); });
}
Played PlayGif(std::span<const std::uint8_t> file) {
    return Play([&](Played& played) {
        RequireEndCodes(file);
        PlayFrames(file, played);
    });
}

} // namespace lumafold::test
