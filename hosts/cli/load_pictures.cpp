#include "hosts/cli/load_pictures.h"

#include "codecs/decode.h"
#include "codecs/picture_kinds.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/standard_streams.h"

namespace lumafold {
namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 30; // as of a file

DecodedPicture Decode(const std::string& path, std::istream& standardInput, PixelValue matte,
                      std::uint64_t pixels) {
    if (path != kStandardStream) return DecodePictureFile(path, matte, pixels);
    std::string bytes;
    const auto read = [&] {
        return std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    };
    // A stream may never end, so no more is read of it before it is known for a picture.
    ReadOn(standardInput, kKindBytes, bytes);
    if (PictureKindOf(read()) != nullptr) ReadOn(standardInput, kMostBytes + 1, bytes);
    if (bytes.size() > kMostBytes) return {OwnedDib(), "too large for a picture"};
    return DecodePicture(read(), matte, pixels);
}

} // namespace

OwnedDib PictureLoader::Load(const std::string& path) {
    DecodedPicture decoded = Decode(path, standardInput_, matte_, pixelsLeft_);
    // Only what a picture comes to is held with the others.
    if (decoded.picture) decoded = Resized(std::move(decoded.picture), size_, pixelsLeft_);
    if (!decoded.picture) throw Failure(kFailed, path + ": " + decoded.error);
    Count(decoded.picture.Get());
    return std::move(decoded.picture);
}

OwnedDib PictureLoader::Copy(DibHandle picture, const std::string& path) {
    OwnedDib copy(GlobalDuplicate(picture));
    if (!copy) throw Failure(kFailed, path + ": not enough memory");
    Count(copy.Get());
    return copy;
}

void PictureLoader::Count(DibHandle picture) {
    std::int32_t width = 0, height = 0;
    DibQuery(picture, &width, &height, nullptr, nullptr);
    pixelsLeft_ -=
        std::min(pixelsLeft_, static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height));
}

} // namespace lumafold
