#include <bit>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <png.h>

#include "codecs/colour_profile.h"
#include "codecs/jump_guard.h"
#include "codecs/orientation.h"

namespace lumafold {
namespace {

/// A file being read by libpng.
class PngReader : public JumpGuard {
public:
    explicit PngReader(std::span<const std::uint8_t> file) : file_(file) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_read_fn(png_, this, OnRead);
    }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

    png_structp Png() const { return png_; }
    png_infop Info() const { return info_; }

private:
    [[noreturn]] static void OnError(png_structp png, png_const_charp text) {
        auto* self = static_cast<PngReader*>(png_get_error_ptr(png));
        if (self->ended_) self->Fail(kEndsTooEarly);
        char line[160];
        std::snprintf(line, sizeof line, "the PNG data is damaged (%s)", text);
        self->Fail(line);
    }
    static void OnWarning(png_structp, png_const_charp) {}
    static void OnRead(png_structp png, png_bytep to, std::size_t bytes) {
        auto* self = static_cast<PngReader*>(png_get_io_ptr(png));
        if (bytes > self->file_.size() - self->position_) {
            self->ended_ = true;
            png_error(png, "end of file");
        }
        std::memcpy(to, self->file_.data() + self->position_, bytes);
        self->position_ += bytes;
    }

    std::span<const std::uint8_t> file_;
    std::size_t position_ = 0;
    bool ended_ = false;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

/// What the header says, and which colour, if any, the file declares transparent.
struct PngShape {
    std::uint32_t width, height;
    int depth, colourType;
    bool keyed;
    png_color_16 key;

    bool Grey() const { return (colourType & PNG_COLOR_MASK_COLOR) == 0; }
    bool Alpha() const { return (colourType & PNG_COLOR_MASK_ALPHA) != 0; }
    bool Indexed() const { return colourType == PNG_COLOR_TYPE_PALETTE; }
    /// A transparent 16-bit grey has no entry of its own among 256, so such a picture needs true colour.
    bool GreyRampFits() const { return colourType == PNG_COLOR_TYPE_GRAY && !(depth == 16 && keyed); }
    /// Whether pixels are indexes into a table, and colours change only there.
    bool OnlyTable() const { return Indexed() || GreyRampFits(); }
};

PngShape ReadShape(PngReader& reader) {
    PngShape shape{};
    reader.Guarded([&] {
        // Texts change no pixel, and compressed ones may unpack to a great deal. So may profiles: no more
        // than 8 MB.
        static const png_byte kIgnored[] = "tEXt\0zTXt\0iTXt";
        png_set_keep_unknown_chunks(reader.Png(), PNG_HANDLE_CHUNK_NEVER, kIgnored, 3);
        png_set_chunk_malloc_max(reader.Png(), 8'000'000);
        png_read_info(reader.Png(), reader.Info());
        png_get_IHDR(reader.Png(), reader.Info(), &shape.width, &shape.height, &shape.depth,
                     &shape.colourType, nullptr, nullptr, nullptr);
        png_color_16p key = nullptr;
        if (!shape.Indexed() && png_get_tRNS(reader.Png(), reader.Info(), nullptr, nullptr, &key) != 0) {
            shape.keyed = true;
            shape.key = *key;
        }
    });
    return shape;
}

/// The curve a gAMA chunk tells; 0 where it is sRGB's, to within what that chunk can tell, or nonsense.
double GammaOf(png_fixed_point told) {
    constexpr int kSrgb = 45455, kNear = kSrgb / 20, kLeast = 10000, kMost = 1000000;
    if (told < kLeast || told > kMost || std::abs(told - kSrgb) <= kNear) return 0;
    return 100000.0 / told;
}

/// A profile counts before the chunk that says sRGB, and that before gamma and primaries.
ToSrgb ReadColours(PngReader& reader, const PngShape& shape) {
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 bytes = 0;
    int compression = 0, intent = 0;
    png_fixed_point gamma = 0;
    ColourNumbers numbers;
    bool isSrgb = false, hasNumbers = false;
    reader.Guarded([&] {
        png_structp png = reader.Png();
        png_infop info = reader.Info();
        if (png_get_iCCP(png, info, &name, &compression, &profile, &bytes) == 0) profile = nullptr;
        isSrgb = png_get_sRGB(png, info, &intent) != 0;
        if (png_get_gAMA_fixed(png, info, &gamma) != 0) hasNumbers = true;
        if (png_get_cHRM(png, info, &numbers.white[0], &numbers.white[1], &numbers.red[0], &numbers.red[1],
                         &numbers.green[0], &numbers.green[1], &numbers.blue[0], &numbers.blue[1]) != 0) {
            hasNumbers = true;
        }
    });
    const SampleLayout layout{shape.Grey() ? SampleLayout::Colours::Grey : SampleLayout::Colours::Rgb,
                              shape.OnlyTable() ? 1 : (shape.depth + 7) / 8, shape.Alpha()};
    if (profile != nullptr) return ToSrgb({profile, bytes}, layout);
    if (isSrgb || !hasNumbers) return {};
    numbers.gamma = GammaOf(gamma);
    return ToSrgb(numbers, layout);
}

Palette ReadPalette(PngReader& reader, const ToSrgb& toSrgb, PixelValue matte) {
    Palette palette{};
    png_colorp colours = nullptr;
    png_bytep alphas = nullptr;
    int colourCount = 0, alphaCount = 0;
    reader.Guarded([&] {
        png_get_PLTE(reader.Png(), reader.Info(), &colours, &colourCount);
        png_get_tRNS(reader.Png(), reader.Info(), &alphas, &alphaCount, nullptr);
    });
    const auto count = static_cast<std::size_t>(std::min(colourCount, 256));
    for (std::size_t i = 0; i < count; ++i)
        palette[i] = {colours[i].red, colours[i].green, colours[i].blue};
    toSrgb.Convert(palette);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const bool hasAlpha = static_cast<int>(i) < alphaCount;
        palette[i] = i < count ? LayOver(palette[i], hasAlpha ? alphas[i] : 255U, matte) : Rgb{};
    }
    return palette;
}

Palette ReadPalette(PngReader& reader, const PngShape& shape, const ToSrgb& toSrgb, PixelValue matte) {
    if (shape.Indexed()) return ReadPalette(reader, toSrgb, matte);
    if (!shape.GreyRampFits()) return {};
    Palette ramp = GreyRamp(std::min(shape.depth, 8));
    toSrgb.Convert(ramp);
    if (shape.keyed && shape.key.gray < 1U << shape.depth) ramp[shape.key.gray] = RgbOf(matte);
    return ramp;
}

/// One row from what libpng delivers (bytes, or 16-bit samples high byte first) to the picture.
class RowConverter {
public:
    RowConverter(const PngShape& shape, const ToSrgb& toSrgb, PixelValue matte, PictureBuilder& picture)
        : shape_(shape), toSrgb_(toSrgb), matte_(matte), picture_(picture),
          indexes_(shape.depth == 16 ? shape.width : 0) {}

    void Convert(std::int32_t y, const std::uint8_t* row) {
        if (picture_.Bits() == 24) {
            shape_.depth == 16 ? TrueColour<2>(y, row) : TrueColour<1>(y, row);
        } else if (shape_.depth == 16) {
            for (std::size_t x = 0; x < shape_.width; ++x) {
                indexes_[x] = LayOver(Sample<2>(row + x * 2), 65535, 0, 65535);
            }
            picture_.PutIndexes(y, indexes_.data());
        } else {
            picture_.PutIndexes(y, row);
        }
    }

private:
    template <int Bytes>
    static std::uint32_t Sample(const std::uint8_t* at) {
        return Bytes == 1 ? *at : static_cast<std::uint32_t>(at[0] << 8 | at[1]);
    }

    template <int Bytes>
    void TrueColour(std::int32_t y, const std::uint8_t* row) {
        constexpr std::uint32_t kMost = Bytes == 1 ? 255 : 65535;
        const std::ptrdiff_t green = shape_.Grey() ? 0 : Bytes, blue = green * 2;
        const std::ptrdiff_t step = blue + (shape_.Alpha() ? 2 : 1) * Bytes;
        std::uint8_t* out = picture_.Row(y);
        const std::uint8_t* seen = Seen(row, static_cast<std::size_t>(step));
        for (std::uint32_t x = 0; x < shape_.width; ++x, out += 3, row += step, seen += step) {
            const std::uint32_t r = Sample<Bytes>(seen), g = Sample<Bytes>(seen + green),
                                b = Sample<Bytes>(seen + blue);
            std::uint32_t alpha = kMost;
            if (shape_.Alpha()) {
                alpha = Sample<Bytes>(row + blue + Bytes);
            } else if (shape_.keyed &&
                       IsKey(Sample<Bytes>(row), Sample<Bytes>(row + green), Sample<Bytes>(row + blue))) {
                alpha = 0;
            }
            out[0] = LayOver(b, alpha, BlueOf(matte_), kMost);
            out[1] = LayOver(g, alpha, GreenOf(matte_), kMost);
            out[2] = LayOver(r, alpha, RedOf(matte_), kMost);
        }
    }

    /// The row in the colours of sRGB, good until the next call; which pixel is the key shows in `row` alone.
    const std::uint8_t* Seen(const std::uint8_t* row, std::size_t pixelBytes) {
        if (!toSrgb_) return row;
        seen_.assign(row, row + pixelBytes * shape_.width);
        toSrgb_.Convert(seen_.data(), shape_.width);
        return seen_.data();
    }

    bool IsKey(std::uint32_t r, std::uint32_t g, std::uint32_t b) const {
        if (shape_.Grey()) return r == shape_.key.gray;
        return r == shape_.key.red && g == shape_.key.green && b == shape_.key.blue;
    }

    const PngShape& shape_;
    const ToSrgb& toSrgb_;
    PixelValue matte_;
    PictureBuilder& picture_;
    std::vector<std::uint8_t> indexes_, seen_;
};

/// Interlaced files come in several passes over all rows, so those need every row kept.
void ReadRows(PngReader& reader, const PngShape& shape, RowConverter& converter) {
    int passes = 1;
    std::size_t rowBytes = 0;
    reader.Guarded([&] {
        png_set_packing(reader.Png());
        passes = png_set_interlace_handling(reader.Png());
        png_read_update_info(reader.Png(), reader.Info());
        rowBytes = png_get_rowbytes(reader.Png(), reader.Info());
    });
    const std::size_t step = passes == 1 ? 0 : rowBytes;
    std::vector<std::uint8_t> rows(rowBytes + step * (shape.height - 1));
    reader.Guarded([&] {
        for (int pass = 1; pass <= passes; ++pass) {
            for (std::uint32_t y = 0; y < shape.height; ++y) {
                std::uint8_t* row = rows.data() + step * y;
                png_read_row(reader.Png(), row, nullptr);
                if (pass == passes) converter.Convert(static_cast<std::int32_t>(y), row);
            }
        }
        png_read_end(reader.Png(), reader.Info());
    });
}

int ReadOrientation(PngReader& reader) {
    int orientation = 1;
#ifdef PNG_eXIf_SUPPORTED
    png_bytep exif = nullptr;
    png_uint_32 bytes = 0;
    reader.Guarded([&] {
        if (png_get_eXIf_1(reader.Png(), reader.Info(), &bytes, &exif) == 0) exif = nullptr;
    });
    if (exif != nullptr) orientation = ExifOrientation({exif, bytes});
#endif
    return orientation;
}

/// Width and height stand right behind the signature; checked here, a size too large is told as what it is.
void CheckHeaderSize(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    if (file.size() < 24) throw DecodeError{kEndsTooEarly};
    CheckSize(png_get_uint_32(file.data() + 16), png_get_uint_32(file.data() + 20), limits);
}

} // namespace

OwnedDib DecodePng(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    CheckHeaderSize(file, limits);
    PngReader reader(file);
    const PngShape shape = ReadShape(reader);
    // The header chunk may be preceded by others in a damaged file: what libpng read is what counts.
    CheckSize(shape.width, shape.height, limits);
    const ToSrgb toSrgb = ReadColours(reader, shape);
    const Palette palette = ReadPalette(reader, shape, toSrgb, limits.matte);
    PictureBuilder picture(shape.width, shape.height, palette,
                           shape.OnlyTable() ? std::min(shape.depth, 8) : 24);
    RowConverter converter(shape, toSrgb, limits.matte, picture);
    ReadRows(reader, shape, converter);
    return Upright(picture.Finish(), ReadOrientation(reader));
}

std::vector<PixelValue> DecodePngPixels(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    static_assert(std::endian::native == std::endian::little); // a pixel's red is its lowest byte
    CheckHeaderSize(file, limits);
    PngReader reader(file);
    const PngShape shape = ReadShape(reader);
    CheckSize(shape.width, shape.height, limits);
    std::vector<PixelValue> pixels(std::size_t{shape.width} * shape.height);
    reader.Guarded([&] {
        png_structp png = reader.Png();
        png_set_expand(png);
        png_set_scale_16(png);
        png_set_gray_to_rgb(png);
        png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
        const int passes = png_set_interlace_handling(png);
        png_read_update_info(png, reader.Info());
        for (int pass = 0; pass < passes; ++pass) {
            for (std::uint32_t y = 0; y < shape.height; ++y)
                png_read_row(png, reinterpret_cast<png_bytep>(pixels.data() + std::size_t{y} * shape.width),
                             nullptr);
        }
        png_read_end(png, reader.Info());
    });
    return pixels;
}

} // namespace lumafold
