// giflib over a file in memory, and what reading a frame takes. Inside this room only.
#pragma once

#include <new>
#include <vector>

#include <gif_lib.h>

#include "codecs/decode_common.h"

namespace lumafold {

/// A file being read by giflib, record by record, so that no more than what is asked for is ever unpacked.
class GifReader {
public:
    explicit GifReader(std::span<const std::uint8_t> file) : file_(file) {
        int error = 0;
        gif_ = DGifOpen(this, OnRead, &error);
        if (gif_ == nullptr) Fail(error);
    }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;
    ~GifReader() {
        int error = 0;
        DGifCloseFile(gif_, &error);
    }

    GifFileType* operator->() const { return gif_; }
    GifFileType* Get() const { return gif_; }
    void Check(int result) const {
        if (result == GIF_ERROR) Fail(gif_->Error);
    }

private:
    [[noreturn]] void Fail(int error) const {
        if (error == D_GIF_ERR_NOT_ENOUGH_MEM) throw std::bad_alloc();
        if (ended_) throw DecodeError{kEndsTooEarly};
        if (error == D_GIF_ERR_EOF_TOO_SOON) throw DecodeError{"the picture data ends too early"};
        const char* text = GifErrorString(error);
        throw DecodeError{std::string("the GIF data is damaged (") + (text != nullptr ? text : "unknown") +
                          ")"};
    }
    static int OnRead(GifFileType* gif, GifByteType* to, int bytes) {
        auto* self = static_cast<GifReader*>(gif->UserData);
        const std::size_t left = self->file_.size() - self->position_;
        std::size_t length = static_cast<std::size_t>(bytes);
        if (length > left) {
            self->ended_ = true;
            length = left;
        }
        // giflib may take a short read for a whole one: no byte of the buffer is left as it was.
        std::memset(to, 0, static_cast<std::size_t>(bytes));
        std::memcpy(to, self->file_.data() + self->position_, length);
        self->position_ += length;
        return static_cast<int>(length);
    }

    std::span<const std::uint8_t> file_;
    std::size_t position_ = 0;
    bool ended_ = false;
    GifFileType* gif_ = nullptr;
};

/// The rows of the frame whose description was just read, put in order where they are interlaced.
inline std::vector<std::uint8_t> ReadGifIndexes(GifReader& gif) {
    struct Pass {
        std::size_t first, step;
    };
    constexpr Pass kWhole[] = {{0, 1}};
    constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    const std::span<const Pass> passes = gif->Image.Interlace ? std::span<const Pass>(kInterlaced) : kWhole;
    const auto width = static_cast<std::size_t>(gif->Image.Width);
    const auto height = static_cast<std::size_t>(gif->Image.Height);
    std::vector<std::uint8_t> indexes(width * height);
    for (const Pass& pass : passes) {
        for (std::size_t y = pass.first; y < height; y += pass.step)
            gif.Check(DGifGetLine(gif.Get(), indexes.data() + y * width, static_cast<int>(width)));
    }
    return indexes;
}

} // namespace lumafold
