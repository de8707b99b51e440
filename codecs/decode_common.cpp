#include "codecs/decode_common.h"

namespace lumafold {
namespace {

DibHandle CreateOrThrow(std::uint32_t width, std::uint32_t height, const Palette& palette, int bits) {
    const DibHandle dib =
        DibCreate(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), &palette, bits);
    if (dib == 0) throw std::bad_alloc();
    return dib;
}

DibHeader* HeaderOrThrow(const LockedDib& lock) {
    if (!lock) throw std::bad_alloc();
    return lock.Get();
}

} // namespace

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
        PutColour(row + 3 * i, LayOver(Rgb{rgba[0], rgba[1], rgba[2]}, rgba[3], matte));
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
    : picture_(CreateOrThrow(width, height, palette, bits)), lock_(picture_.Get()),
      rows_(HeaderOrThrow(lock_)) {}

void PictureBuilder::PutIndexes(std::int32_t y, const std::uint8_t* indexes) {
    std::uint8_t* row = rows_.Row(y);
    const auto width = static_cast<std::size_t>(rows_.Width());
    if (rows_.Bits() == 8) {
        std::memcpy(row, indexes, width);
        return;
    }
    const auto bits = static_cast<std::size_t>(rows_.Bits());
    const std::size_t perByte = 8 / bits;
    const unsigned mask = (1U << bits) - 1;
    for (std::size_t x = 0; x < width; ++x) {
        const std::size_t shift = bits * (perByte - 1 - x % perByte);
        row[x / perByte] = static_cast<std::uint8_t>(row[x / perByte] | (indexes[x] & mask) << shift);
    }
}

} // namespace lumafold
