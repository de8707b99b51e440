#include "codecs/png_writer.h"

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

    /// A whole file of a 24-bit picture. False when libpng, or memory, gave up.
    bool Write(const ConstRowView& rows) {
        if (info_ == nullptr) return false;
        row_.resize(static_cast<std::size_t>(rows.Width()) * 3);
        if (setjmp(jump_) != 0) return false;
        Begin(rows.Width(), rows.Height(), 24);
        png_set_bgr(png_);
        for (std::int32_t y = 0; y < rows.Height(); ++y) {
            std::memcpy(row_.data(), rows.Row(y), row_.size());
            png_write_row(png_, row_.data());
        }
        png_write_end(png_, info_);
        return true;
    }
    bool Write(const PngRows& rows) {
        if (info_ == nullptr) return false;
        if (setjmp(jump_) != 0) return false;
        if (rows.bits <= 8) png_set_compression_level(png_, 9); // palettes gain from it, and cost little
        Begin(rows.width, rows.height, rows.bits);
        png_set_packing(png_);
        const auto stride = static_cast<std::size_t>(rows.width) * (rows.bits == 24 ? 3 : 1);
        for (std::size_t y = 0; y < static_cast<std::size_t>(rows.height); ++y)
            png_write_row(png_, rows.pixels + y * stride);
        png_write_end(png_, info_);
        return true;
    }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    void Begin(std::int32_t width, std::int32_t height, int bits) {
        static constexpr png_color kColours[256] = {};
        png_set_write_fn(png_, this, OnWrite, OnFlush);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                     bits == 24 ? 8 : bits, bits == 24 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_PALETTE,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (bits <= 8) png_set_PLTE(png_, info_, kColours, 1 << bits);
        png_write_info(png_, info_);
    }
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
        if (writer.Write(ConstRowView(*dib))) return writer.Take();
    } catch (const std::bad_alloc&) {
        // Told below, like libpng's own lack of memory.
    }
    error = "there is not enough memory for the PNG file";
    return {};
}

bool CompressPngRows(const PngRows& rows, std::vector<std::uint8_t>& data) {
    PngMemoryWriter writer;
    if (!writer.Write(rows)) return false;
    const std::vector<std::uint8_t> file = writer.Take();
    constexpr std::size_t kSignature = 8, kAround = 12; // length, type and checksum of a chunk
    for (std::size_t at = kSignature; at + kAround <= file.size();) {
        const std::size_t length = png_get_uint_32(file.data() + at);
        const auto* first = file.data() + at + 8;
        if (std::memcmp(first - 4, "IDAT", 4) == 0) data.insert(data.end(), first, first + length);
        at += length + kAround;
    }
    return true;
}

} // namespace lumafold
