// True-colour pictures to PNG files, for contact sheets and single frames; and the rows alone, for files that
// hold many.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold {

/// The whole file in memory, or empty with `error` set. The picture must be 24 bits deep and not empty.
std::vector<std::uint8_t> EncodePng(DibHandle picture, std::string& error);

/// Pixels as PNG orders them: 3 bytes of red, green and blue each where `bits` is 24, else an index in a
/// byte, whatever `bits` (1, 2, 4, 8) will store of it.
struct PngRows {
    std::int32_t width, height;
    int bits;
    const std::uint8_t* pixels;
};

/// The filtered and compressed rows, as a file's IDAT chunks would hold them together. False when libpng, or
/// memory, gave up.
bool CompressPngRows(const PngRows& rows, std::vector<std::uint8_t>& data);

} // namespace lumafold
