#include "codecs/decode_common.h"

#include <algorithm>

#include "image/index_rows.h"

namespace lumafold {
namespace {

OwnedDib CreateOrThrow(std::uint32_t width, std::uint32_t height, const Palette& palette, int bits) {
    OwnedDib dib = DibCreate(width, height, &palette, bits);
    if (!dib) throw std::bad_alloc();
    return dib;
}

} // namespace

std::string OneLine(const char* text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c < ' ' || c > '~'; }, ' ');
    return line;
}

void CheckSize(std::uint64_t width, std::uint64_t height, const DecodeLimits& limits) {
    if (width == 0 || height == 0) throw DecodeError{"the picture has no pixels"};
    const std::string size =
        std::to_string(width) + " x " + std::to_string(height) + " pixels are too many, ";
    if (width > kLargestSide || height > kLargestSide) {
        throw DecodeError{size + "a side may have " + std::to_string(kLargestSide)};
    }
    if (width * height > limits.mostPixels) {
        throw DecodeError{size + "there is room for " + std::to_string(limits.mostPixels)};
    }
}

void PutOverMatte(const std::uint8_t* rgba, std::size_t pixels, PixelValue matte, std::uint8_t* row) {
    for (std::size_t i = 0; i < pixels; ++i, rgba += 4)
        StoreColour(row + 3 * i, LayOver(Rgb{rgba[0], rgba[1], rgba[2]}, rgba[3], matte));
}

Palette GreyRamp(int bits) {
    Palette ramp{};
    const unsigned last = (1U << bits) - 1;
    for (unsigned i = 0; i <= last; ++i) {
        const auto grey = static_cast<std::uint8_t>(i * 255 / last);
        ramp[i] = {grey, grey, grey};
    }
    return ramp;
}

PictureBuilder::PictureBuilder(std::uint32_t width, std::uint32_t height, const Palette& palette, int bits)
    : picture_(CreateOrThrow(width, height, palette, bits)), rows_(picture_.Rows()) {}

void PictureBuilder::PutIndexes(std::int32_t y, const std::uint8_t* indexes) {
    PackIndices({indexes, static_cast<std::size_t>(rows_.Width())}, rows_.Bits(), rows_.Row(y));
}

} // namespace lumafold
