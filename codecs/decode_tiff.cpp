#include <cstdio>
#include <memory>
#include <vector>

#include <tiffio.h>

#include "codecs/colour_profile.h"
#include "codecs/decode_common.h"
#include "codecs/orientation.h"

namespace lumafold {
namespace {

/// A file in memory being read by libtiff.
class TiffReader {
public:
    TiffReader(std::span<const std::uint8_t> file, std::uint64_t mostBytes) : file_(file) {
        const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                       TIFFOpenOptionsFree);
        if (!options) throw std::bad_alloc();
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(mostBytes));
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, this);
        tiff_ = TIFFClientOpenExt("", "rm", this, OnRead, OnWrite, OnSeek, OnClose, OnSize, nullptr, nullptr,
                                  options.get());
        if (tiff_ == nullptr) Fail();
    }
    TiffReader(const TiffReader&) = delete;
    TiffReader& operator=(const TiffReader&) = delete;
    ~TiffReader() { TIFFClose(tiff_); }

    TIFF* Get() const { return tiff_; }
    /// By the first thing that went wrong, or `why` where nothing was told of it.
    [[noreturn]] void Fail(const char* why = "") const {
        if (ended_) throw DecodeError{kEndsTooEarly};
        const std::string& text = text_.empty() ? OneLine(why) : text_;
        throw DecodeError{"the TIFF data is damaged or of an unknown kind" +
                          (text.empty() ? "" : " (" + text + ")")};
    }
    template <typename Value>
    Value Field(std::uint32_t tag, Value missing) const {
        Value value{};
        return TIFFGetFieldDefaulted(tiff_, tag, &value) != 0 ? value : missing;
    }

private:
    static TiffReader* Self(thandle_t handle) { return static_cast<TiffReader*>(handle); }

    static int OnError(TIFF*, void* self, const char*, const char* format, va_list values) {
        std::string& text = static_cast<TiffReader*>(self)->text_;
        if (!text.empty()) return 1;
        char line[200];
        std::vsnprintf(line, sizeof line, format, values);
        text = OneLine(line);
        return 1;
    }
    static int OnWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }
    static tmsize_t OnRead(thandle_t handle, void* to, tmsize_t bytes) {
        TiffReader* self = Self(handle);
        const std::uint64_t wanted = static_cast<std::uint64_t>(std::max<tmsize_t>(bytes, 0));
        const std::uint64_t left =
            self->file_.size() - std::min<std::uint64_t>(self->position_, self->file_.size());
        const std::uint64_t length = std::min(wanted, left);
        if (length < wanted) self->ended_ = true;
        if (length > 0) std::memcpy(to, self->file_.data() + self->position_, length);
        self->position_ += length;
        return static_cast<tmsize_t>(length);
    }
    static tmsize_t OnWrite(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t OnSeek(thandle_t handle, toff_t offset, int whence) {
        TiffReader* self = Self(handle);
        const toff_t from = whence == SEEK_CUR   ? self->position_
                            : whence == SEEK_END ? self->file_.size()
                                                 : 0;
        return self->position_ = from + offset;
    }
    static int OnClose(thandle_t) { return 0; }
    static toff_t OnSize(thandle_t handle) { return Self(handle)->file_.size(); }

    std::span<const std::uint8_t> file_;
    std::uint64_t position_ = 0;
    bool ended_ = false;
    std::string text_;
    TIFF* tiff_ = nullptr;
};

/// Pixels from the top as they are stored, some rows at a time: a byte each of red, green, blue and opacity.
class TiffRows {
public:
    TiffRows(const TiffReader& reader, std::uint32_t width) : reader_(reader), width_(width) {
        char why[1024] = "";
        if (TIFFRGBAImageBegin(&image_, reader.Get(), 1, why) == 0) reader.Fail(why);
        // The library knows four of the eight ways up: it is told that there is nothing to turn.
        image_.orientation = image_.req_orientation = ORIENTATION_TOPLEFT;
    }
    TiffRows(const TiffRows&) = delete;
    TiffRows& operator=(const TiffRows&) = delete;
    ~TiffRows() { TIFFRGBAImageEnd(&image_); }

    /// Good until the next call.
    std::span<std::uint8_t> Read(std::uint32_t top, std::uint32_t rows) {
        raster_.resize(std::size_t{width_} * rows);
        image_.row_offset = static_cast<int>(top);
        if (TIFFRGBAImageGet(&image_, raster_.data(), width_, rows) == 0) reader_.Fail();
        for (std::uint32_t& pixel : raster_) {
            std::uint8_t rgba[4] = {
                static_cast<std::uint8_t>(TIFFGetR(pixel)), static_cast<std::uint8_t>(TIFFGetG(pixel)),
                static_cast<std::uint8_t>(TIFFGetB(pixel)), static_cast<std::uint8_t>(TIFFGetA(pixel))};
            Unmultiply(rgba);
            std::memcpy(&pixel, rgba, sizeof rgba);
        }
        return {reinterpret_cast<std::uint8_t*>(raster_.data()), raster_.size() * 4};
    }

private:
    const TiffReader& reader_;
    std::uint32_t width_;
    TIFFRGBAImage image_{};
    std::vector<std::uint32_t> raster_;
};

/// What the profile makes of the samples the library delivers: greys come as three equal ones, and what it
/// makes of inks and the like has no profile.
class TiffColours {
public:
    explicit TiffColours(const TiffReader& reader) : ramp_(GreyRamp(8)) {
        std::uint32_t bytes = 0;
        void* data = nullptr;
        if (TIFFGetField(reader.Get(), TIFFTAG_ICCPROFILE, &bytes, &data) == 0) return;
        const std::span profile(static_cast<const std::uint8_t*>(data), bytes);
        switch (reader.Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED)) {
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_MINISBLACK:
            grey_ = ToSrgb(profile, {SampleLayout::Colours::Grey});
            grey_.Convert(ramp_);
            break;
        case PHOTOMETRIC_RGB:
        case PHOTOMETRIC_PALETTE:
        case PHOTOMETRIC_YCBCR:
            colours_ = ToSrgb(profile, {SampleLayout::Colours::Rgb, 1, true});
            break;
        default:
            break;
        }
    }

    void Convert(std::span<std::uint8_t> rgba) const {
        colours_.Convert(rgba.data(), rgba.size() / 4);
        for (std::size_t i = 0; grey_ && i < rgba.size(); i += 4)
            std::memset(rgba.data() + i, ramp_[rgba[i]].red, 3);
    }

private:
    ToSrgb colours_, grey_;
    Palette ramp_;
};

/// As many rows as are packed together, so that nothing is unpacked twice.
std::uint32_t RowsAtOnce(const TiffReader& reader, std::uint32_t height) {
    const bool tiled = TIFFIsTiled(reader.Get()) != 0;
    const auto rows = reader.Field<std::uint32_t>(tiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, height);
    return std::clamp(rows, 1U, height);
}

} // namespace

OwnedDib DecodeTiff(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    // 16-bit samples of four channels are the most that is read; tables and tags have little.
    const TiffReader reader(file, limits.mostPixels * 8 + (std::uint64_t{1} << 20));
    const auto width = reader.Field<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
    const auto height = reader.Field<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0);
    CheckSize(width, height, limits);
    TiffRows rows(reader, width);
    const TiffColours colours(reader);
    PictureBuilder picture(width, height, {}, 24);
    const std::uint32_t step = RowsAtOnce(reader, height);
    for (std::uint32_t top = 0; top < height; top += step) {
        const std::uint32_t count = std::min(step, height - top);
        std::span<std::uint8_t> rgba = rows.Read(top, count);
        colours.Convert(rgba);
        for (std::uint32_t y = 0; y < count; ++y, rgba = rgba.subspan(std::size_t{4} * width))
            PutOverMatte(rgba.data(), width, limits.matte, picture.Row(static_cast<std::int32_t>(top + y)));
    }
    return Upright(picture.Finish(), reader.Field<std::uint16_t>(TIFFTAG_ORIENTATION, 1));
}

} // namespace lumafold
