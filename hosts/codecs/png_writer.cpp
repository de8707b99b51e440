#include "hosts/codecs/png_writer.h"

#include <csetjmp>
#include <new>

#include <png.h>

#include "image/row_view.h"

namespace lumafold {
namespace {

/// A file being written by libpng into memory. Its errors jump to Write, whose frame holds no destructor's
/// work.
class PngMemoryWriter {
public:
    PngMemoryWriter() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
    }
    PngMemoryWriter(const PngMemoryWriter&) = delete;
    PngMemoryWriter& operator=(const PngMemoryWriter&) = delete;
    ~PngMemoryWriter() { png_destroy_write_struct(&png_, &info_); }

    /// False when libpng, or memory, gave up.
    bool Write(const ConstRowView& rows) {
        if (info_ == nullptr) return false;
        row_.resize(static_cast<std::size_t>(rows.Width()) * 3);
        if (setjmp(jump_) != 0) return false;
        png_set_write_fn(png_, this, OnWrite, OnFlush);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(rows.Width()),
                     static_cast<png_uint_32>(rows.Height()), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png_, info_);
        png_set_bgr(png_);
        for (std::int32_t y = 0; y < rows.Height(); ++y) {
            std::memcpy(row_.data(), rows.Row(y), row_.size());
            png_write_row(png_, row_.data());
        }
        png_write_end(png_, info_);
        return true;
    }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    [[noreturn]] static void OnError(png_structp png, png_const_charp) {
        std::longjmp(static_cast<PngMemoryWriter*>(png_get_error_ptr(png))->jump_, 1);
    }
    static void OnWarning(png_structp, png_const_charp) {}
    static void OnWrite(png_structp png, png_bytep data, std::size_t bytes) {
        auto* self = static_cast<PngMemoryWriter*>(png_get_io_ptr(png));
        if (!self->Append(data, bytes)) png_error(png, "no memory");
    }
    static void OnFlush(png_structp) {}
    bool Append(const std::uint8_t* data, std::size_t bytes) {
        // libpng is C: nothing may be thrown through it.
        try {
            bytes_.insert(bytes_.end(), data, data + bytes);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf jump_{};
    std::vector<std::uint8_t> row_, bytes_;
};

} // namespace

std::vector<std::uint8_t> EncodePng(DibHandle picture, std::string& error) {
    error.clear();
    const LockedDib dib(picture);
    if (!dib || dib->biBitCount != 24 || dib->biWidth < 1 || dib->biHeight < 1) {
        error = "only true-colour pictures can be written as PNG";
        return {};
    }
    try {
        PngMemoryWriter writer;
        if (writer.Write(ConstRowView(dib.Get()))) return writer.Take();
    } catch (const std::bad_alloc&) {
        // Told below, like libpng's own lack of memory.
    }
    error = "there is not enough memory for the PNG file";
    return {};
}

} // namespace lumafold
