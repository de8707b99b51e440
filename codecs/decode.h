// Picture files to Dibs: PNG, JPEG, GIF (its first frame) and BMP, told apart by their first bytes. Any file
// may come in; what cannot be read is an error in one line, never a crash.
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

/// Palette and depth are kept where the format has them (1, 4, 8 bits); all else becomes 24 bits. Alpha is
/// laid over `matte` (0x00BBGGRR), EXIF orientation is applied, 16-bit samples and CMYK are reduced.
/// `mostPixels` bounds width x height before anything is allocated.
DecodedPicture DecodePicture(std::span<const std::uint8_t> file, PixelValue matte, std::uint64_t mostPixels);

/// The same from a file; the error then tells why it cannot be opened or read.
DecodedPicture DecodePictureFile(const std::string& path, PixelValue matte, std::uint64_t mostPixels);

} // namespace lumafold
