#include "hosts/web/picture_store.h"

#include "image/resample.h"
#include "image/row_view.h"

namespace lumafold {
namespace {

constexpr std::uint64_t kMostPixels = std::uint64_t{256} << 20;

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

const StoredPicture* PictureStore::Add(int number, std::span<const std::uint8_t> file,
                                       const SizeRequest& size, std::string& error) {
    Remove(number);
    DecodedPicture decoded = DecodePicture(file, size.matte, kMostPixels);
    StoredPicture stored;
    if (decoded.picture) {
        stored.fileWidth = decoded.picture->biWidth;
        stored.fileHeight = decoded.picture->biHeight;
        decoded = Resized(std::move(decoded.picture), size, kMostPixels);
    }
    error = decoded.error;
    if (!decoded.picture) return nullptr;
    stored.dib = std::move(decoded.picture);
    return &(pictures_[number] = std::move(stored));
}

const StoredPicture* PictureStore::Find(int number) const {
    const auto found = pictures_.find(number);
    return found == pictures_.end() ? nullptr : &found->second;
}

} // namespace lumafold
