#include "codecs/decode.h"

#include "codecs/decode_common.h"
#include "codecs/files.h"
#include "codecs/picture_kinds.h"

namespace lumafold {
namespace {

OwnedDib DecodeByFirstBytes(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    if (file.empty()) throw DecodeError{kEmptyFile};
    const PictureKind* kind = PictureKindOf(file);
    if (kind == nullptr) throw DecodeError{UnknownKindText()};
    if (kind->Readable()) return kind->decode(file, limits);
    throw DecodeError{"this is a picture of the kind " + std::string(kind->name) +
                      ", which this build cannot read"};
}

} // namespace

DecodedPicture DecodePicture(std::span<const std::uint8_t> file, PixelValue matte, std::uint64_t mostPixels) {
    return PictureOrError([&] { return DecodeByFirstBytes(file, {matte, mostPixels}); });
}

DecodedPicture DecodePictureFile(const std::string& path, PixelValue matte, std::uint64_t mostPixels) {
    Array<std::uint8_t> bytes;
    std::string error;
    if (!ReadKnownFile(path, bytes, error)) return {OwnedDib(), error};
    return DecodePicture({bytes.data(), bytes.size()}, matte, mostPixels);
}

} // namespace lumafold
