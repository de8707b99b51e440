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

/// White is `a`. Four pixels of the mask become three words of weights, since a byte at a time takes twice as
/// long.
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
    for (std::size_t i = 0; i < 3 * kBlock; ++i)
        out[i] = Mix(b[i], a[i], weights[i]);
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

/// Into `box` of `out`, by the weights that `mask` begins with, a row every `stride`.
void BlendBox(const DibHeader& a, const DibHeader& b, const std::uint8_t* mask, std::ptrdiff_t stride,
              const Rect& box, DibHeader& out) {
    const ConstRowView rowsA(a), rowsB(b);
    const RowView rows(out);
    const std::ptrdiff_t left = std::ptrdiff_t{3} * box.left;
    for (std::int32_t y = box.top; y < box.bottom; ++y, mask += stride)
        BlendRow(rowsA.Row(y) + left, rowsB.Row(y) + left, mask, rows.Row(y) + left,
                 static_cast<std::size_t>(RectWidth(box)));
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
    if (!Covers24(a, width, height) || !Covers24(b, width, height) || !Covers24(mask, width, height)) {
        const bool oneBit = mask.biBitCount == 1;
        ForEachPixel(*out, [&](std::int32_t x, std::int32_t y) {
            return BlendPixel(DibGetPixel(a, x, y), DibGetPixel(b, x, y), DibGetPixel(mask, x, y), oneBit);
        });
        return out;
    }
    const ConstRowView rowsA(a), rowsB(b), rowsMask(mask);
    const RowView rows = out.Rows();
    Array<std::uint8_t> weights(static_cast<std::size_t>(width)); // the mask's red
    if (!weights) return {};
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* red = rowsMask.Row(y) + 2;
        for (std::size_t x = 0; x < weights.size(); ++x)
            weights[x] = red[3 * x];
        BlendRow(rowsA.Row(y), rowsB.Row(y), weights.data(), rows.Row(y), weights.size());
    }
    return out;
}

OwnedDib MaskBlend(const DibHeader& a, const DibHeader& b, const Mask& mask, std::int32_t left,
                   std::int32_t top) {
    OwnedDib out = DibCreate(a.biWidth, a.biHeight, nullptr, 24);
    if (out) BlendBox(a, b, mask.Row(top) + left, mask.Width(), {0, 0, a.biWidth, a.biHeight}, *out);
    return out;
}

void MaskBlendBox(const DibHeader& a, const DibHeader& b, const Mask& mask, const Rect& box, DibHeader& out) {
    BlendBox(a, b, mask.Row(0), mask.Width(), box, out);
}

} // namespace lumafold
