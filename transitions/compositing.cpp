#include "transitions/compositing.h"

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

/// Pixels that are blended at once.
constexpr std::size_t kBlock = 16;

/// Each byte by a weight of its own; white is `a`.
void MixBlock(const std::uint8_t* __restrict a, const std::uint8_t* __restrict b,
              const std::uint8_t* __restrict weights, std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < 3 * kBlock; ++i)
        out[i] = Mix(b[i], a[i], weights[i]);
}

/// Four pixels of the mask become three words, since a byte at a time takes twice
/// as long.
void BlendBlock(const std::uint8_t* __restrict a, const std::uint8_t* __restrict b,
                const std::uint8_t* __restrict mask, std::uint8_t* __restrict out) {
    std::uint32_t words[kBlock / 4 * 3];
    for (std::size_t i = 0; i < kBlock / 4; ++i, mask += 4) {
        const std::uint32_t m0 = mask[0], m1 = mask[1], m2 = mask[2], m3 = mask[3];
        words[3 * i] = m0 * 0x010101 | m1 << 24;
        words[3 * i + 1] = m1 * 0x0101 | m2 * 0x01010000;
        words[3 * i + 2] = m2 | m3 * 0x01010100;
    }
    std::uint8_t weights[3 * kBlock];
    std::memcpy(weights, words, sizeof(weights));
    MixBlock(a, b, weights, out);
}

/// How many pixels from the first on are in whole blocks of this value.
std::size_t FlatPixels(const std::uint8_t* mask, std::size_t pixels, std::uint8_t value) {
    const std::uint64_t pattern = value * 0x0101010101010101ULL;
    std::size_t flat = 0;
    for (; flat + kBlock <= pixels; flat += kBlock) {
        std::uint64_t words[2];
        std::memcpy(words, mask + flat, kBlock);
        if (((words[0] ^ pattern) | (words[1] ^ pattern)) != 0) break;
    }
    return flat;
}

/// Masks are mostly flat: runs of one picture or the other are copied. The ranges must not overlap.
void BlendRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
              std::size_t pixels) {
    for (std::size_t i = 0; i < pixels;) {
        if (mask[i] == 0 || mask[i] == 255) {
            const std::size_t flat = FlatPixels(mask + i, pixels - i, mask[i]);
            std::memcpy(out + 3 * i, (mask[i] == 0 ? b : a) + 3 * i, 3 * flat);
            i += flat;
            if (flat != 0) continue;
        }
        if (i + kBlock > pixels && pixels >= kBlock) i = pixels - kBlock; // the last block reaches back
        if (i + kBlock <= pixels) {
            BlendBlock(a + 3 * i, b + 3 * i, mask + i, out + 3 * i);
            i += kBlock;
        } else {
            for (std::size_t c = 0; c < 3; ++c)
                out[3 * i + c] = Mix(b[3 * i + c], a[3 * i + c], mask[i]);
            ++i;
        }
    }
}

/// The same through the red of a 24-bit mask.
void BlendRowByRed(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* mask, std::uint8_t* out,
                   std::size_t bytes) {
    constexpr std::size_t kBlockBytes = 3 * kBlock;
    for (std::size_t i = 0; i < bytes; i += kBlockBytes) {
        std::uint8_t weights[kBlockBytes];
        const std::size_t count = std::min(kBlockBytes, bytes - i);
        for (std::size_t k = 0; k < count; k += 3)
            weights[k] = weights[k + 1] = weights[k + 2] = mask[i + k + 2];
        if (count == kBlockBytes) {
            MixBlock(a + i, b + i, weights, out + i);
        } else {
            for (std::size_t k = 0; k < count; ++k)
                out[i + k] = Mix(b[i + k], a[i + k], weights[k]);
        }
    }
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
            BlendRowByRed(rowsA.Row(y), rowsB.Row(y), rowsMask.Row(y), rows.Row(y), rows.RowBytes());
    } else {
        const bool oneBit = mask.biBitCount == 1;
        ForEachPixel(*out, [&](std::int32_t x, std::int32_t y) {
            return BlendPixel(DibGetPixel(a, x, y), DibGetPixel(b, x, y), DibGetPixel(mask, x, y), oneBit);
        });
    }
    return out;
}

OwnedDib MaskBlend(const DibHeader& a, const DibHeader& b, const Mask& mask, std::int32_t left,
                   std::int32_t top) {
    OwnedDib out = DibCreate(a.biWidth, a.biHeight, nullptr, 24);
    if (!out) return out;
    const ConstRowView rowsA(a), rowsB(b);
    const RowView rows = out.Rows();
    for (std::int32_t y = 0; y < rows.Height(); ++y)
        BlendRow(rowsA.Row(y), rowsB.Row(y), mask.Row(top + y) + left, rows.Row(y),
                 static_cast<std::size_t>(rows.Width()));
    return out;
}

void MaskBlendBox(const DibHeader& a, const DibHeader& b, const Mask& mask, const Rect& box, DibHeader& out) {
    const ConstRowView rowsA(a), rowsB(b);
    const RowView rows(out);
    const std::ptrdiff_t left = std::ptrdiff_t{3} * box.left;
    for (std::int32_t y = 0; y < mask.Height(); ++y)
        BlendRow(rowsA.Row(box.top + y) + left, rowsB.Row(box.top + y) + left, mask.Row(y),
                 rows.Row(box.top + y) + left, static_cast<std::size_t>(mask.Width()));
}

} // namespace lumafold
