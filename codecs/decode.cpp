#include "codecs/decode.h"

#include <new>

#include "codecs/decode_common.h"
#include "codecs/file_kinds.h"
#include "codecs/files.h"

namespace lumafold {
namespace {

OwnedDib DecodeByKind(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    if (file.empty()) throw DecodeError{kEmptyFile};
    switch (KindOf(file).value_or(FileKind::Mng)) {
    case FileKind::Png:
        return DecodePng(file, limits);
    case FileKind::Jpeg:
        return DecodeJpeg(file, limits);
    case FileKind::Gif:
        return DecodeGif(file, limits);
    case FileKind::Bmp:
        return DecodeBmp(file, limits);
    case FileKind::Mng:
        break;
    }
    throw DecodeError{kUnknownKind};
}

} // namespace

DecodedPicture DecodePicture(std::span<const std::uint8_t> file, PixelValue matte, std::uint64_t mostPixels) {
    try {
        return {DecodeByKind(file, {matte, mostPixels}), ""};
    } catch (const DecodeError& failure) {
        return {OwnedDib(), failure.text};
    } catch (const std::bad_alloc&) {
        return {OwnedDib(), "there is not enough memory for the picture"};
    }
}

DecodedPicture DecodePictureFile(const std::string& path, PixelValue matte, std::uint64_t mostPixels) {
    Array<std::uint8_t> bytes;
    std::string error;
    if (!ReadKnownFile(path, bytes, error)) return {OwnedDib(), error};
    return DecodePicture({bytes.data(), bytes.size()}, matte, mostPixels);
}

} // namespace lumafold
