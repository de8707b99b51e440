// Picture files of the kinds in picture_kinds.h to Dibs, told apart by their first bytes; of files with many
// frames or pages the first. Any file may come in; what cannot be read is an error in one line, never a
// crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "image/dib.h"

namespace lumafold {

inline constexpr std::int32_t kLargestSide = 16384;

struct DecodedPicture {
    OwnedDib picture;  ///< none on failure
    std::string error; ///< what is wrong, without the file's name; "" on success
};

/// Palette and depth are kept where PNG, JPEG, GIF and BMP have them (1, 4, 8 bits); all else becomes 24
/// bits. Colours are brought to sRGB where the file says that they are others, alpha is laid over `matte`
/// (0x00BBGGRR), the orientation is applied, 16-bit samples and CMYK are reduced.
/// `mostPixels` bounds width x height before anything is allocated.
DecodedPicture DecodePicture(std::span<const std::uint8_t> file, PixelValue matte, std::uint64_t mostPixels);

/// The same from a file; the error then tells why it cannot be opened or read.
DecodedPicture DecodePictureFile(const std::string& path, PixelValue matte, std::uint64_t mostPixels);

} // namespace lumafold
