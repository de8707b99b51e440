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

Size TargetSize(const DibHeader& picture, const Fit& fit) {
    const double x = static_cast<double>(fit.width) / picture.biWidth;
    const double y = static_cast<double>(fit.height) / picture.biHeight;
    double factor = fit.mode == FitMode::Cover ? std::max(x, y) : std::min(x, y);
    if (fit.mode == FitMode::Shrink) factor = std::min(factor, 1.0);
    return {Scaled(picture.biWidth, factor), Scaled(picture.biHeight, factor)};
}

OwnedDib Resized(const DibHeader& source, Size size) {
    OwnedDib result(DibCreate(size.width, size.height, nullptr, 24));
    const LockedDib target(result.Get());
    if (!target) return {};
    const ConstRowView from(&source);
    const RowView to(target.Get());
    const int done = stbir_resize_uint8_srgb(from.Stored(), from.Width(), from.Height(),
                                             static_cast<int>(from.Stride()), to.Stored(), to.Width(),
                                             to.Height(), static_cast<int>(to.Stride()), 3,
                                             STBIR_ALPHA_CHANNEL_NONE, 0);
    return done != 0 ? std::move(result) : OwnedDib();
}

OwnedDib Fitted(OwnedDib picture, const Fit& fit) {
    std::int32_t width = 0, height = 0;
    if (fit.mode == FitMode::AsIs || !DibQuery(picture.Get(), &width, &height, nullptr, nullptr)) return picture;
    OwnedDib full(DibToTrueColour(picture.Get()));
    const LockedDib source(full.Get());
    if (!source) return {};
    const Size size = TargetSize(*source, fit);
    if (size.width == width && size.height == height && fit.mode != FitMode::Cover) return picture;
    OwnedDib resized = Resized(*source, size);
    if (!resized || fit.mode != FitMode::Cover) return resized;
    const std::int32_t left = (size.width - fit.width) / 2, top = (size.height - fit.height) / 2;
    return OwnedDib(DibCropRect(resized.Get(), {left, top, left + fit.width, top + fit.height}, 0));
}

} // namespace

CanvasPixels PixelsOf(const OwnedDib& picture) {
    const OwnedDib full(DibToTrueColour(picture.Get()));
    const LockedDib dib(full.Get());
    CanvasPixels pixels;
    if (!dib) return pixels;
    const ConstRowView rows(dib.Get());
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
    DibQuery(decoded.picture.Get(), &stored.fileWidth, &stored.fileHeight, nullptr, nullptr);
    stored.dib = Fitted(std::move(decoded.picture), fit);
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
