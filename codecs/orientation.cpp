#include "codecs/orientation.h"

#include <new>

namespace lumafold {
namespace {

/// Numbers of a TIFF block in its byte order; 0 where the block ends before.
class TiffNumbers {
public:
    TiffNumbers(std::span<const std::uint8_t> bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

    std::uint32_t Read(std::size_t offset, std::size_t length) const {
        if (offset > bytes_.size() || bytes_.size() - offset < length) return 0;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            value = value << 8 | bytes_[offset + (bigEndian_ ? i : length - 1 - i)];
        }
        return value;
    }

private:
    std::span<const std::uint8_t> bytes_;
    bool bigEndian_;
};

} // namespace

int ExifOrientation(std::span<const std::uint8_t> tiff) {
    if (tiff.size() < 8 || tiff[0] != tiff[1] || (tiff[0] != 'I' && tiff[0] != 'M')) return 1;
    const TiffNumbers numbers(tiff, tiff[0] == 'M');
    if (numbers.Read(2, 2) != 42) return 1;
    constexpr std::uint32_t kOrientationTag = 0x0112, kShort = 3;
    const std::size_t directory = numbers.Read(4, 4);
    const std::uint32_t entries = numbers.Read(directory, 2);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + std::size_t{12} * i;
        if (numbers.Read(entry, 2) != kOrientationTag || numbers.Read(entry + 2, 2) != kShort) continue;
        const std::uint32_t value = numbers.Read(entry + 8, 2);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    }
    return 1;
}

OwnedDib Upright(OwnedDib stored, int orientation) {
    if (orientation <= 1) return stored;
    const bool turned = orientation >= 5;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;

    const std::int32_t width = stored->biWidth, height = stored->biHeight;
    OwnedDib upright = DibCreateLike(*stored, turned ? height : width, turned ? width : height);
    if (!upright) throw std::bad_alloc();
    for (std::int32_t y = 0; y < upright->biHeight; ++y) {
        for (std::int32_t x = 0; x < upright->biWidth; ++x) {
            const std::int32_t across = turned ? y : x, down = turned ? x : y;
            DibSetPixel(*upright, x, y,
                        DibGetPixel(*stored, fromRight ? width - 1 - across : across,
                                    fromBottom ? height - 1 - down : down));
        }
    }
    return upright;
}

} // namespace lumafold
