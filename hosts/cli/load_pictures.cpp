#include "hosts/cli/load_pictures.h"

#include "codecs/decode.h"

namespace lumafold {

OwnedDib PictureLoader::Load(const std::string& path, std::string& error) {
    DecodedPicture decoded = DecodePictureFile(path, matte_, pixelsLeft_);
    std::int32_t width = 0, height = 0;
    if (!decoded.picture) {
        error = path + ": " + decoded.error;
        return {};
    }
    DibQuery(decoded.picture.Get(), &width, &height, nullptr, nullptr);
    pixelsLeft_ -=
        std::min(pixelsLeft_, static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height));
    return std::move(decoded.picture);
}

} // namespace lumafold
