#include "tests/hosts/png_player.h"

#include <png.h>

#include <cstring>
#include <stdexcept>

namespace lumafold::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Chunk {
    std::string type;
    Bytes data;

    std::uint32_t Number(std::size_t at, std::size_t bytes) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | data.at(at + i);
        return value;
    }
    int Int(std::size_t at) const { return static_cast<int>(Number(at, 4)); }
};

/// A table of the checksum would be faster; this is the polynomial itself.
std::uint32_t Checksum(std::span<const std::uint8_t> bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (0xEDB88320 & (0 - (sum & 1)));
    }
    return ~sum;
}

void Require(bool holds, const char* offence) {
    if (!holds) throw std::runtime_error(offence);
}

std::vector<Chunk> Chunks(std::span<const std::uint8_t> file, const char* signature) {
    Require(file.size() > 8 && std::memcmp(file.data(), signature, 8) == 0, "signature");
    std::vector<Chunk> chunks;
    for (std::span rest = file.subspan(8); !rest.empty();) {
        Require(rest.size() >= 12, "chunk length");
        const std::size_t length = Chunk{"", Bytes(rest.begin(), rest.begin() + 4)}.Number(0, 4);
        Require(rest.size() - 12 >= length, "chunk length");
        const auto summed = rest.subspan(4, length + 4), data = summed.subspan(4),
                   sum = rest.subspan(length + 8, 4);
        chunks.push_back({std::string(summed.begin(), summed.begin() + 4), Bytes(data.begin(), data.end())});
        Require(Chunk{"", Bytes(sum.begin(), sum.end())}.Number(0, 4) == Checksum(summed), "checksum");
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

    /// Four bytes a pixel.
    Bytes Decode(int width, int height) const {
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
        Bytes pixels(PNG_IMAGE_SIZE(image));
        const bool read = png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) != 0;
        const bool clean = read && image.warning_or_error == 0;
        const bool fits = static_cast<int>(image.width) == width && static_cast<int>(image.height) == height;
        png_image_free(&image);
        Require(clean, "picture's rows");
        Require(fits, "picture's size");
        return pixels;
    }
};

class Canvas {
public:
    explicit Canvas(PlayedPng& played)
        : played_(played),
          screen_(static_cast<std::size_t>(played.width) * static_cast<std::size_t>(played.height),
                  kNoPixel) {}

    void Show(PlayedPicture picture, const Still& still, bool over) {
        Require(picture.left >= 0 && picture.top >= 0 && picture.width > 0 && picture.height > 0,
                "rectangle");
        Require(picture.left + picture.width <= played_.width, "rectangle leaves the screen");
        Require(picture.top + picture.height <= played_.height, "rectangle leaves the screen");
        const Bytes pixels = still.Decode(picture.width, picture.height);
        for (int i = 0; i < picture.width * picture.height; ++i) {
            const std::uint8_t* from = pixels.data() + std::ptrdiff_t{4} * i;
            const int x = picture.left + i % picture.width, y = picture.top + i / picture.width;
            PixelValue& to = screen_[static_cast<std::size_t>(y * played_.width + x)];
            Require(from[3] == 0 || from[3] == 255, "half transparent pixel");
            if (from[3] == 255) {
                to = MakeColour(from[0], from[1], from[2]);
            } else if (!over) {
                to = kNoPixel;
            }
        }
        picture.transparency = !still.transparency.empty();
        picture.screen = screen_;
        played_.pictures.push_back(std::move(picture));
    }

private:
    PlayedPng& played_;
    std::vector<PixelValue> screen_;
};

void ReadText(const Chunk& chunk, PlayedPng& played) {
    const std::string text(chunk.data.begin(), chunk.data.end());
    const std::string keyword =
        chunk.type == "iTXt" ? std::string("Comment\0\0\0\0\0", 12) : std::string("Comment\0", 8);
    Require(text.starts_with(keyword), "keyword");
    played.comment = text.substr(keyword.size());
}

void ReadHeader(const Chunk& chunk, PlayedPng& played) {
    played.depth = static_cast<int>(chunk.Number(8, 1));
    played.colourType = static_cast<int>(chunk.Number(9, 1));
}

class ApngPlayer {
public:
    explicit ApngPlayer(PlayedPng& played) : played_(played) {}

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
        PlayedPicture picture{c.Int(12), c.Int(16), c.Int(4), c.Int(8), 0, false, {}};
        Require(c.Number(22, 2) == 100, "ticks of a delay");
        picture.delay = c.Number(20, 2);
        if (played_.pictures.empty()) {
            Require(picture.width == played_.width && picture.height == played_.height, "first frame");
        }
        std::copy_n(c.data.begin() + 4, 8, still_.header.begin());
        canvas.Show(std::move(picture), still_, c.Number(25, 1) == 1);
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

    PlayedPng& played_;
    Chunk control_;
    Still still_;
    std::uint32_t sequence_ = 0;
};

class MngPlayer {
public:
    explicit MngPlayer(PlayedPng& played) : played_(played) {}

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
            delay_ = chunk.Int(6);
        } else if (chunk.type == "DEFI") {
            Require(chunk.data.size() == 12 && chunk.Number(0, 4) == 0, "definition");
            left_ = chunk.Int(4);
            top_ = chunk.Int(8);
        } else if (chunk.type == "IHDR") {
            still_ = {};
            still_.header = chunk.data;
            ReadHeader(chunk, played_);
            width_ = chunk.Int(0);
            height_ = chunk.Int(4);
        } else if (chunk.type == "PLTE") {
            still_.palette = chunk.data;
        } else if (chunk.type == "tRNS") {
            Require(transparencyTold_, "profile without transparency");
            still_.transparency = chunk.data;
        } else if (chunk.type == "IDAT") {
            still_.rows = chunk.data;
        } else if (chunk.type == "IEND") {
            Require(delay_ >= 0, "picture without a delay");
            canvas.Show({left_, top_, width_, height_, delay_, false, {}}, still_, true);
        }
    }

    PlayedPng& played_;
    Still still_;
    bool transparencyTold_ = false;
    int left_ = 0, top_ = 0, width_ = 0, height_ = 0;
    long delay_ = -1;
};

template <typename Player>
PlayedPng Play(std::span<const std::uint8_t> file, const char* signature) {
    PlayedPng played;
    try {
        Player(played).Play(Chunks(file, signature));
    } catch (const std::exception& offence) {
        played.problem = offence.what();
    }
    return played;
}

} // namespace

PlayedPng PlayApng(std::span<const std::uint8_t> file) { return Play<ApngPlayer>(file, "\x89PNG\r\n\x1A\n"); }

PlayedPng PlayMng(std::span<const std::uint8_t> file) { return Play<MngPlayer>(file, "\x8AMNG\r\n\x1A\n"); }

} // namespace lumafold::test
