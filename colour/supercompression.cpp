#include "colour/supercompression.h"

#include "platform/simd.h"

namespace lumafold {
namespace {

#if LUMAFOLD_SSE2

/// For twelve bits that tell which bytes are equal, the first lowest: four marks, the first pixel's on top.
constexpr auto kMarksOfBytes = [] {
    std::array<std::uint8_t, 4096> marks{};
    for (unsigned bytes = 0; bytes < marks.size(); ++bytes) {
        for (unsigned pixel = 0; pixel < 4; ++pixel) {
            if ((bytes >> 3 * pixel & 7) == 7) marks[bytes] |= static_cast<std::uint8_t>(8U >> pixel);
        }
    }
    return marks;
}();

unsigned EqualBytes(const std::uint8_t* a, const std::uint8_t* b) {
    const auto load = [](const std::uint8_t* bytes) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    };
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(load(a), load(b))));
}

#endif

/// Marks the pixels of a row, as many as can be sixteen at a time.
void MarkRow(const std::uint8_t* before, const std::uint8_t* frame, std::int32_t width, std::uint8_t* mask) {
    std::int32_t x = 0;
#if LUMAFOLD_SSE2
    for (; x + 16 <= width; x += 16, before += 48, frame += 48, mask += 2) {
        const unsigned first = EqualBytes(before, frame), middle = EqualBytes(before + 16, frame + 16),
                       last = EqualBytes(before + 32, frame + 32);
        const unsigned left = first | (middle & 0xFF) << 16, right = middle >> 8 | last << 8;
        mask[0] = static_cast<std::uint8_t>(kMarksOfBytes[left & 0xFFF] << 4 | kMarksOfBytes[left >> 12]);
        mask[1] = static_cast<std::uint8_t>(kMarksOfBytes[right & 0xFFF] << 4 | kMarksOfBytes[right >> 12]);
    }
#endif
    for (std::int32_t bit = 0; x < width; ++x, ++bit, before += 3, frame += 3) {
        if (std::equal(frame, frame + 3, before)) {
            mask[bit / 8] = static_cast<std::uint8_t>(mask[bit / 8] | 0x80 >> bit % 8);
        }
    }
}

/// The definition.
void PaintPixels(const DibHeader& mask, DibHeader& frame, PixelValue value) {
    for (std::int32_t y = 0; y < mask.biHeight; ++y) {
        for (std::int32_t x = 0; x < mask.biWidth; ++x) {
            if (DibGetPixel(mask, x, y) != 0) DibSetPixel(frame, x, y, value);
        }
    }
}

/// Fills the marked pixels, of so many bytes each, with one byte.
template <int kBytes>
void PaintRow(const std::uint8_t* mask, std::int32_t width, std::uint8_t* row, unsigned byte) {
    for (std::int32_t x = 0; x < width; x += 8, ++mask, row += 8 * kBytes) {
        if (*mask == 0) continue;
        const std::int32_t pixels = std::min(width - x, 8);
        for (std::int32_t i = 0; i < pixels; ++i) {
            // Marks are as irregular as grain, so no branch depends on one.
            const unsigned keep = (*mask >> (7 - i) & 1U) - 1U;
            for (std::int32_t k = i * kBytes; k < (i + 1) * kBytes; ++k)
                row[k] = static_cast<std::uint8_t>((row[k] & keep) | (byte & ~keep));
        }
    }
}

/// The same for two pixels a byte, the first in its upper half. Eight at a time: rows and marks are both
/// padded to that, and no mark stands in the padding.
void PaintHalfBytes(const std::uint8_t* mask, std::int32_t width, std::uint8_t* row, unsigned value) {
    for (std::int32_t x = 0; x < width; x += 8, ++mask, row += 4) {
        unsigned paint = *mask; // each bit moves to its pixel's four
        paint = (paint | paint << 12) & 0x000F000F;
        paint = (paint | paint << 6) & 0x03030303;
        paint = __builtin_bswap32(((paint | paint << 3) & 0x11111111) * 0xF);
        unsigned pixels;
        std::memcpy(&pixels, row, sizeof(pixels));
        pixels = (pixels & ~paint) | (value * 0x11111111U & paint);
        std::memcpy(row, &pixels, sizeof(pixels));
    }
}

void PaintMarked(const DibHeader& mask, DibHeader& frame, PixelValue value) {
    const ConstRowView marks(mask);
    const RowView rows(frame);
    const auto paintRows = [&](auto paintRow) {
        for (std::int32_t y = 0; y < rows.Height(); ++y)
            paintRow(marks.Row(y), rows.Width(), rows.Row(y), value);
    };
    const bool sameSize = marks.Width() == rows.Width() && marks.Height() == rows.Height();
    if (sameSize && rows.Bits() == 4) return paintRows(PaintHalfBytes);
    if (sameSize && rows.Bits() == 8) return paintRows(PaintRow<1>);
    if (sameSize && rows.Bits() == 24 && value == 0) return paintRows(PaintRow<3>);
    PaintPixels(mask, frame, value);
}

} // namespace

bool MarkUnchanged(DibHandle before, FrameRecord& frame, PixelValue matte) {
    const ReadDib earlier(before), picture(frame.image);
    if (!earlier || !picture || !Covers24(*earlier, picture->biWidth, picture->biHeight) ||
        !Covers24(*picture, earlier->biWidth, earlier->biHeight)) {
        return false;
    }
    OwnedDib mask = DibCreate(picture->biWidth, picture->biHeight, nullptr, 1);
    if (!mask) return false;
    const ConstRowView from(*earlier), to(*picture);
    const RowView marks = mask.Rows();
    for (std::int32_t y = 0; y < to.Height(); ++y)
        MarkRow(from.Row(y), to.Row(y), to.Width(), marks.Row(y));
    GlobalDestroy(frame.mask);
    frame.mask = mask.Release();
    frame.transparentIndex = static_cast<std::int32_t>(matte);
    return true;
}

bool PaintUnchanged(FrameRecord& frame, int slot, PixelValue matte) {
    if (frame.mask == 0) return true;
    const ReadDib mask(frame.mask);
    const LockedDib picture(frame.image);
    if (!mask || !picture) return false;
    if (picture->biBitCount > 8) {
        // Looked for from black up, and black never counts as used: so changed black pixels show through too.
        PaintMarked(*mask, *picture, MakeColour(0, 0, 0));
        frame.transparentIndex = 0;
        return true;
    }
    if (slot >= 1 << picture->biBitCount) return false;
    frame.transparentIndex = slot;
    if (slot < 0) return true;
    PaintMarked(*mask, *picture, static_cast<PixelValue>(slot));
    // Table entries lie behind the header, four bytes each.
    StoreColour(reinterpret_cast<std::uint8_t*>(picture.Get()) + picture->biSize + 4 * slot, matte);
    return true;
}

} // namespace lumafold
