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
    /// The first thing that went wrong.
    [[noreturn]] void Fail() const {
        if (ended_) throw DecodeError{kEndsTooEarly};
        throw DecodeError{"the TIFF data is damaged or of an unknown kind (" + text_ + ")"};
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
        for (const char* c = line; *c != 0; ++c)
            text += *c >= ' ' && *c < 0x7F ? *c : ' ';
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

/// The pixels as they are stored, a byte each of red, green, blue and opacity, premultiplied.
std::vector<std::uint32_t> ReadRaster(const TiffReader& reader, std::uint32_t width, std::uint32_t height) {
    char why[1024] = "";
    TIFFRGBAImage image{};
    if (TIFFRGBAImageBegin(&image, reader.Get(), 1, why) == 0) reader.Fail();
    const std::unique_ptr<TIFFRGBAImage, decltype(&TIFFRGBAImageEnd)> owner(&image, TIFFRGBAImageEnd);
    // The library knows four of the eight ways up: it is told that there is nothing to turn.
    image.orientation = image.req_orientation = ORIENTATION_TOPLEFT;
    std::vector<std::uint32_t> raster(std::size_t{width} * height);
    if (TIFFRGBAImageGet(&image, raster.data(), width, height) == 0) reader.Fail();
    return raster;
}

/// In place, to bytes in the order that the layouts of samples have.
void Unpack(std::vector<std::uint32_t>& raster) {
    for (std::uint32_t& pixel : raster) {
        const std::uint32_t alpha = TIFFGetA(pixel);
        std::uint8_t rgba[4] = {static_cast<std::uint8_t>(TIFFGetR(pixel)),
                                static_cast<std::uint8_t>(TIFFGetG(pixel)),
                                static_cast<std::uint8_t>(TIFFGetB(pixel)), static_cast<std::uint8_t>(alpha)};
        Unmultiply(rgba);
        std::memcpy(&pixel, rgba, sizeof rgba);
    }
}

/// Greys come as three equal samples: their profile makes one table for them.
void ConvertGreys(const ToSrgb& toSrgb, std::span<std::uint8_t> rgba) {
    Palette ramp = GreyRamp(8);
    toSrgb.Convert(ramp);
    for (std::size_t i = 0; i < rgba.size(); i += 4)
        std::memset(rgba.data() + i, ramp[rgba[i]].red, 3);
}

/// Of greys and of plain colours; what the library makes of inks and the like has no profile.
void BringToSrgb(const TiffReader& reader, std::span<std::uint8_t> rgba) {
    std::uint32_t bytes = 0;
    void* profile = nullptr;
    if (TIFFGetField(reader.Get(), TIFFTAG_ICCPROFILE, &bytes, &profile) == 0) return;
    const std::span data(static_cast<const std::uint8_t*>(profile), bytes);
    switch (reader.Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED)) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        if (const ToSrgb toSrgb(data, {SampleLayout::Colours::Grey}); toSrgb) ConvertGreys(toSrgb, rgba);
        break;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_PALETTE:
    case PHOTOMETRIC_YCBCR:
        ToSrgb(data, {SampleLayout::Colours::Rgb, 1, true}).Convert(rgba.data(), rgba.size() / 4);
        break;
    default:
        break;
    }
}

} // namespace

OwnedDib DecodeTiff(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    // 16-bit samples of four channels are the most that is read; tables and tags have little.
    const TiffReader reader(file, limits.mostPixels * 8 + (std::uint64_t{1} << 20));
    const auto width = reader.Field<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
    const auto height = reader.Field<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0);
    CheckSize(width, height, limits);
    std::vector<std::uint32_t> raster = ReadRaster(reader, width, height);
    Unpack(raster);
    const std::span rgba(reinterpret_cast<std::uint8_t*>(raster.data()), raster.size() * 4);
    BringToSrgb(reader, rgba);
    PictureBuilder picture(width, height, {}, 24);
    for (std::uint32_t y = 0; y < height; ++y) {
        PutOverMatte(rgba.data() + std::size_t{y} * width * 4, width, limits.matte,
                     picture.Row(static_cast<std::int32_t>(y)));
    }
    return Upright(picture.Finish(), reader.Field<std::uint16_t>(TIFFTAG_ORIENTATION, 1));
}

} // namespace lumafold
