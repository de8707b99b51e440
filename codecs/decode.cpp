#include "codecs/decode.h"

#include <cstring>
#include <new>
#include <string_view>
#include <vector>

#include "codecs/decode_common.h"
#include "codecs/files.h"

namespace lumafold {
namespace {

struct Format {
    std::string_view firstBytes;
    OwnedDib (*decode)(std::span<const std::uint8_t>, const DecodeLimits&);
};
constexpr Format kFormats[] = {
    {std::string_view("\x89PNG\r\n\x1A\n", 8), DecodePng},
    {std::string_view("\xFF\xD8\xFF", 3), DecodeJpeg},
    {"GIF87a", DecodeGif},
    {"GIF89a", DecodeGif},
    {"BM", DecodeBmp},
};

OwnedDib DecodeByFirstBytes(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    if (file.empty()) throw DecodeError{"the file is empty"};
    for (const Format& format : kFormats) {
        const std::size_t length = format.firstBytes.size();
        if (file.size() >= length && std::memcmp(file.data(), format.firstBytes.data(), length) == 0) {
            return format.decode(file, limits);
        }
    }
    throw DecodeError{"this is no PNG, JPEG, GIF or BMP picture"};
}

} // namespace

DecodedPicture DecodePicture(std::span<const std::uint8_t> file, PixelValue matte, std::uint64_t mostPixels) {
    try {
        return {DecodeByFirstBytes(file, {matte, mostPixels}), ""};
    } catch (const DecodeError& failure) {
        return {OwnedDib(), failure.text};
    } catch (const std::bad_alloc&) {
        return {OwnedDib(), "there is not enough memory for the picture"};
    }
}

DecodedPicture DecodePictureFile(const std::string& path, PixelValue matte, std::uint64_t mostPixels) {
    std::vector<std::uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) return {OwnedDib(), error};
    return DecodePicture(bytes, matte, mostPixels);
}

} // namespace lumafold
