#include "hosts/web/picture_store.h"

#include <stb/stb_image_resize.h>

#include "codecs/decode.h"
#include "image/resample.h"
#include "image/row_view.h"

namespace lumafold {
namespace {

constexpr std::uint64_t kMostPixels = std::uint64_t{256} << 20;

struct Size {
    std::int32_t width, height;
};

/// At least one pixel, rounded to the nearest.
std::int32_t Scaled(std::int32_t side, double factor) {
    return std::max(1, static_cast<std::int32_t>(side * factor + 0.5));
}

double Factor(const DibHeader& picture, const Fit& fit) {
    const double x = static_cast<double>(fit.width) / picture.biWidth;
    const double y = static_cast<double>(fit.height) / picture.biHeight;
    switch (fit.mode) {
    case FitMode::Most:
        return std::min({x, y, 1.0});
    case FitMode::Contain:
        return std::min(x, y);
    case FitMode::Cover:
        return std::max(x, y);
    case FitMode::Scale:
        return fit.percent / 100;
    case FitMode::AsIs:
        break;
    }
    return 1;
}

OwnedDib Resized(const DibHeader& source, Size size) {
    OwnedDib result = DibCreate(size.width, size.height, nullptr, 24);
    if (!result) return {};
    const ConstRowView from(source);
    const RowView to = result.Rows();
    const int done = stbir_resize_uint8_srgb(
        from.Stored(), from.Width(), from.Height(), static_cast<int>(from.Stride()), to.Stored(), to.Width(),
        to.Height(), static_cast<int>(to.Stride()), 3, STBIR_ALPHA_CHANNEL_NONE, 0);
    return done != 0 ? std::move(result) : OwnedDib();
}

OwnedDib Fitted(OwnedDib picture, const Fit& fit, PixelValue matte) {
    const double factor = Factor(*picture, fit);
    const Size size{Scaled(picture->biWidth, factor), Scaled(picture->biHeight, factor)};
    const bool boxed = fit.mode == FitMode::Contain || fit.mode == FitMode::Cover;
    const Size box = boxed ? Size{fit.width, fit.height} : size;
    if (box.width == picture->biWidth && box.height == picture->biHeight) return picture;
    const OwnedDib full = DibToTrueColour(*picture);
    OwnedDib resized = full ? Resized(*full, size) : OwnedDib();
    if (!resized || !boxed) return resized;
    const std::int32_t left = (size.width - box.width) / 2, top = (size.height - box.height) / 2;
    return DibCropRect(*resized, {left, top, left + box.width, top + box.height}, matte);
}

} // namespace

CanvasPixels PixelsOf(const DibHeader& picture) {
    CanvasPixels pixels;
    const OwnedDib full = DibToTrueColour(picture);
    if (!full) return pixels;
    const ConstRowView rows = full.Rows();
    pixels.reserve(static_cast<std::size_t>(rows.Width()) * static_cast<std::size_t>(rows.Height()) * 4);
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::int32_t x = 0; x < rows.Width(); ++x, row += 3)
            pixels.insert(pixels.end(), {row[2], row[1], row[0], 255});
    }
    return pixels;
}

const StoredPicture* PictureStore::Add(int number, std::span<const std::uint8_t> file, PixelValue matte,
                                       const Fit& fit, std::string& error) {
    Remove(number);
    DecodedPicture decoded = DecodePicture(file, matte, kMostPixels);
    error = decoded.error;
    if (!decoded.picture) return nullptr;
    StoredPicture stored;
    stored.fileWidth = decoded.picture->biWidth;
    stored.fileHeight = decoded.picture->biHeight;
    stored.dib = Fitted(std::move(decoded.picture), fit, matte);
    if (!stored.dib) {
        error = "not enough memory";
        return nullptr;
    }
    return &(pictures_[number] = std::move(stored));
}

const StoredPicture* PictureStore::Find(int number) const {
    const auto found = pictures_.find(number);
    return found == pictures_.end() ? nullptr : &found->second;
}

} // namespace lumafold
