#include "transitions/compositing.h"

#include "transitions/grey.h"
#include "transitions/mix_bytes.h"

namespace lumafold {
namespace {

PixelValue MixColours(PixelValue a, PixelValue b, std::uint8_t shareOfB) {
    const auto channel = [=](int shift) {
        return static_cast<unsigned>(
            Mix(static_cast<std::uint8_t>(a >> shift), static_cast<std::uint8_t>(b >> shift), shareOfB));
    };
    return MakeColour(channel(0), channel(8), channel(16));
}

/// The mask's bytes weigh the very bytes they stand beside.
void BlendBytes(const std::uint8_t* __restrict a, const std::uint8_t* __restrict b,
                const std::uint8_t* __restrict mask, std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
        out[i] = Mix(b[i], a[i], mask[i]);
    }
}

/// A mask that is not grey weighs by its red.
std::array<std::uint8_t, kBlockBytes> SpreadRed(const std::uint8_t* mask) {
    std::array<std::uint8_t, kBlockBytes> spread;
    for (std::size_t i = 0; i < kBlockBytes; i += 3) {
        spread[i] = spread[i + 1] = spread[i + 2] = mask[i + 2];
    }
    return spread;
}

/// The same, pixel by pixel, for the end of a row.
void BlendPixels(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                 std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; i += 3) {
        for (std::size_t c = 0; c < 3; ++c) {
            out[i + c] = Mix(b[i + c], a[i + c], mask[i + 2]);
        }
    }
}

bool IsAll(const std::uint8_t* block, std::uint64_t pattern) {
    std::uint64_t words[kBlockBytes / 8];
    std::memcpy(words, block, kBlockBytes);
    std::uint64_t differs = 0;
    for (const std::uint64_t word : words) {
        differs |= word ^ pattern;
    }
    return differs == 0;
}

/// Masks are mostly flat: whole blocks of one picture or the other are copied.
void BlendRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
              std::size_t bytes) {
    std::size_t i = 0;
    for (; i + kBlockBytes < bytes; i += kBlockBytes) {
        if (IsAll(mask + i, 0)) {
            std::memcpy(out + i, b + i, kBlockBytes);
        } else if (IsAll(mask + i, ~std::uint64_t{0})) {
            std::memcpy(out + i, a + i, kBlockBytes);
        } else if (IsGreyBlock(mask + i)) {
            BlendBytes(a + i, b + i, mask + i, out + i);
        } else {
            BlendBytes(a + i, b + i, SpreadRed(mask + i).data(), out + i);
        }
    }
    BlendPixels(a + i, b + i, mask + i, out + i, bytes - i);
}

PixelValue BlendPixel(PixelValue a, PixelValue b, PixelValue mask, bool oneBit) {
    if (oneBit) return mask == 0 ? b : a;
    return MixColours(b, a, static_cast<std::uint8_t>(mask));
}

/// Sets each pixel by `pixel(x, y)`.
template <typename Pixel>
void ForEachPixel(DibHeader& out, Pixel pixel) {
    for (std::int32_t y = 0; y < out.biHeight; ++y) {
        for (std::int32_t x = 0; x < out.biWidth; ++x)
            DibSetPixel(out, x, y, pixel(x, y));
    }
}

} // namespace

OwnedDib DibCrossfade(const DibHeader& a, const DibHeader& b, int t) {
    OwnedDib out = DibCreate(a.biWidth, a.biHeight, nullptr, 24);
    if (!out) return out;
    const auto share = static_cast<std::uint8_t>(std::clamp(t, 0, 255));
    if (Covers24(a, a.biWidth, a.biHeight) && Covers24(b, a.biWidth, a.biHeight)) {
        const ConstRowView rowsA(a), rowsB(b);
        const RowView rows = out.Rows();
        for (std::int32_t y = 0; y < rows.Height(); ++y)
            MixBytes(rowsA.Row(y), rowsB.Row(y), rows.Row(y), rows.RowBytes(), share);
    } else {
        ForEachPixel(*out, [&](std::int32_t x, std::int32_t y) {
            return MixColours(DibGetPixel(a, x, y), DibGetPixel(b, x, y), share);
        });
    }
    return out;
}

OwnedDib DibMaskBlend(const DibHeader& a, const DibHeader& b, const DibHeader& mask) {
    const std::int32_t width = a.biWidth, height = a.biHeight;
    OwnedDib out = DibCreate(width, height, nullptr, 24);
    if (!out) return out;
    if (Covers24(a, width, height) && Covers24(b, width, height) && Covers24(mask, width, height)) {
        const ConstRowView rowsA(a), rowsB(b), rowsMask(mask);
        const RowView rows = out.Rows();
        for (std::int32_t y = 0; y < height; ++y)
            BlendRow(rowsA.Row(y), rowsB.Row(y), rowsMask.Row(y), rows.Row(y), rows.RowBytes());
    } else {
        const bool oneBit = mask.biBitCount == 1;
        ForEachPixel(*out, [&](std::int32_t x, std::int32_t y) {
            return BlendPixel(DibGetPixel(a, x, y), DibGetPixel(b, x, y), DibGetPixel(mask, x, y), oneBit);
        });
    }
    return out;
}

} // namespace lumafold
