#include "tests/support/gif_reader.h"

#include <stdexcept>

namespace lumafold::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

class Player {
public:
    explicit Player(std::span<const std::uint8_t> file) : file_(file) {}

    void Play(PlayedGif& gif) {
        const std::string signature = Text(6);
        if (signature != "GIF89a" && signature != "GIF87a") throw std::runtime_error("signature");
        gif.width = U16();
        gif.height = U16();
        const int packed = U8();
        U8();
        U8();
        if ((packed & 0x80) != 0) gif.table = Table(packed);
        screen_.assign(static_cast<std::size_t>(gif.width * gif.height), kNoPixel);
        for (int mark = U8(); mark != 0x3B; mark = U8()) {
            if (mark == 0x21) {
                Extension(gif);
            } else if (mark == 0x2C) {
                Frame(gif);
            } else {
                throw std::runtime_error("unknown mark");
            }
        }
        if (at_ != file_.size()) throw std::runtime_error("bytes behind the end");
    }

private:
    int U8() { return file_.size() > at_ ? file_[at_++] : throw std::runtime_error("file too short"); }
    int U16() {
        const int low = U8();
        return low + 256 * U8();
    }
    std::string Text(int length) {
        std::string text;
        while (length-- > 0)
            text += static_cast<char>(U8());
        return text;
    }
    std::vector<Rgb> Table(int packed) {
        std::vector<Rgb> table(std::size_t{2} << (packed & 7));
        for (Rgb& entry : table) {
            for (std::uint8_t* part : {&entry.red, &entry.green, &entry.blue})
                *part = static_cast<std::uint8_t>(U8());
        }
        return table;
    }
    std::string SubBlocks() {
        std::string all;
        for (int length = U8(); length != 0; length = U8())
            all += Text(length);
        return all;
    }

    void Extension(PlayedGif& gif) {
        const int kind = U8();
        if (kind == 0xF9) {
            if (U8() != 4) throw std::runtime_error("control block size");
            const int packed = U8();
            next_.disposal = packed >> 2 & 7;
            next_.delay = U16();
            const int index = U8();
            next_.transparent = (packed & 1) != 0 ? index : -1;
            if (U8() != 0) throw std::runtime_error("control block end");
        } else if (kind == 0xFE) {
            gif.comment += SubBlocks();
        } else if (kind == 0xFF) {
            const std::string name = Text(U8()), data = SubBlocks();
            if (name == "NETSCAPE2.0" && data.size() == 3 && data[0] == 1) {
                gif.loops = static_cast<std::uint8_t>(data[1]) + 256 * static_cast<std::uint8_t>(data[2]);
            }
        } else {
            throw std::runtime_error("unknown extension");
        }
    }

    void Frame(PlayedGif& gif) {
        PlayedFrame frame = next_;
        next_ = {};
        frame.left = U16();
        frame.top = U16();
        frame.width = U16();
        frame.height = U16();
        const int packed = U8();
        const std::vector<Rgb> table = (packed & 0x80) != 0 ? Table(packed) : gif.table;
        if ((packed & 0x40) != 0) throw std::runtime_error("interlace is not read here");
        if (frame.left + frame.width > gif.width || frame.top + frame.height > gif.height) {
            throw std::runtime_error("frame leaves the screen");
        }
        const int codeBits = U8();
        const Bytes indexes = Unpack(SubBlocks(), codeBits);
        if (indexes.size() != static_cast<std::size_t>(frame.width * frame.height)) {
            throw std::runtime_error("number of pixels");
        }
        const std::vector<PixelValue> before = screen_;
        for (std::size_t i = 0; i < indexes.size(); ++i) {
            if (indexes[i] >= table.size()) throw std::runtime_error("index without a colour");
            const Rgb& colour = table[indexes[i]];
            if (indexes[i] != frame.transparent) {
                screen_[Place(gif, frame, i)] = MakeColour(colour.red, colour.green, colour.blue);
            }
        }
        frame.screen = screen_;
        if (frame.disposal == 3) screen_ = before;
        for (std::size_t i = 0; frame.disposal == 2 && i < indexes.size(); ++i) {
            screen_[Place(gif, frame, i)] = kNoPixel;
        }
        gif.frames.push_back(std::move(frame));
    }
    static std::size_t Place(const PlayedGif& gif, const PlayedFrame& frame, std::size_t i) {
        const auto width = static_cast<std::size_t>(frame.width);
        return (static_cast<std::size_t>(frame.top) + i / width) * static_cast<std::size_t>(gif.width) +
               static_cast<std::size_t>(frame.left) + i % width;
    }

    /// Every string written out in full: slow, and plain to see through.
    static Bytes Unpack(const std::string& data, int codeBits) {
        if (codeBits < 2 || codeBits > 8) throw std::runtime_error("code size");
        const std::size_t clear = std::size_t{1} << codeBits;
        std::vector<Bytes> strings;
        Bytes out, last;
        std::size_t bit = 0;
        int width = codeBits + 1;
        for (;;) {
            std::size_t code = 0;
            for (int i = 0; i < width; ++i, ++bit) {
                if (bit / 8 >= data.size()) throw std::runtime_error("codes end too early");
                code |= static_cast<std::size_t>(static_cast<std::uint8_t>(data[bit / 8]) >> bit % 8 & 1)
                        << i;
            }
            if (code == clear + 1) break;
            if (code == clear) {
                strings.assign(clear + 2, {});
                for (std::size_t i = 0; i < clear; ++i)
                    strings[i] = {static_cast<std::uint8_t>(i)};
                width = codeBits + 1;
                last.clear();
                continue;
            }
            if (strings.empty() || code > strings.size() || (code == strings.size() && last.empty())) {
                throw std::runtime_error("code out of range");
            }
            Bytes string = code < strings.size() ? strings[code] : last;
            if (code == strings.size()) string.push_back(last.front());
            if (!last.empty() && strings.size() < 4096) {
                last.push_back(string.front());
                strings.push_back(last);
                if (strings.size() == std::size_t{1} << width && width < 12) ++width;
            }
            out.insert(out.end(), string.begin(), string.end());
            last = std::move(string);
        }
        if ((bit + 7) / 8 != data.size()) throw std::runtime_error("bytes behind the end code");
        return out;
    }

    std::span<const std::uint8_t> file_;
    std::size_t at_ = 0;
    std::vector<PixelValue> screen_;
    PlayedFrame next_;
};

} // namespace

PlayedGif PlayGif(std::span<const std::uint8_t> file) {
    PlayedGif gif;
    try {
        Player(file).Play(gif);
    } catch (const std::exception& offence) {
        gif.problem = offence.what();
    }
    return gif;
}

} // namespace lumafold::test
