#include "colour/supercompression.h"

#include "image/row_view.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lumafold {
namespace {

/// The definition, for pictures of any size and depth.
void MarkPixels(DibHeader* reference, const DibHeader* frame, DibHeader* mask) {
    for (std::int32_t y = 0; y < reference->biHeight; ++y) {
        for (std::int32_t x = 0; x < reference->biWidth; ++x) {
            const PixelValue pixel = DibGetPixel(frame, x, y);
            const bool unchanged = pixel == DibGetPixel(reference, x, y);
            DibSetPixel(mask, x, y, unchanged ? 1 : 0);
            if (!unchanged) DibSetPixel(reference, x, y, pixel);
        }
    }
}

#if defined(__SSE2__)

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

/// Marks the pixels of a row sixteen at a time. How many.
std::int32_t MarkManyPixels(const std::uint8_t* reference, const std::uint8_t* frame, std::int32_t width,
                            std::uint8_t* mask) {
    std::int32_t x = 0;
    for (; x + 16 <= width; x += 16, reference += 48, frame += 48, mask += 2) {
        const unsigned first = EqualBytes(reference, frame), middle = EqualBytes(reference + 16, frame + 16),
                       last = EqualBytes(reference + 32, frame + 32);
        const unsigned left = first | (middle & 0xFF) << 16, right = middle >> 8 | last << 8;
        mask[0] = static_cast<std::uint8_t>(kMarksOfBytes[left & 0xFFF] << 4 | kMarksOfBytes[left >> 12]);
        mask[1] = static_cast<std::uint8_t>(kMarksOfBytes[right & 0xFFF] << 4 | kMarksOfBytes[right >> 12]);
    }
    return x;
}

#else

std::int32_t MarkManyPixels(const std::uint8_t*, const std::uint8_t*, std::int32_t, std::uint8_t*) {
    return 0;
}

#endif

void MarkRow(const std::uint8_t* reference, const std::uint8_t* frame, std::int32_t width,
             std::uint8_t* mask) {
    for (std::int32_t x = MarkManyPixels(reference, frame, width, mask); x < width; ++x) {
        const std::int32_t byte = 3 * x;
        if (std::equal(frame + byte, frame + byte + 3, reference + byte)) {
            mask[x / 8] = static_cast<std::uint8_t>(mask[x / 8] | 0x80 >> x % 8);
        }
    }
}

void MarkRows(DibHeader* reference, const DibHeader* frame, DibHeader* mask) {
    const RowView shown(reference), marks(mask);
    const ConstRowView rows(frame);
    for (std::int32_t y = 0; y < shown.Height(); ++y) {
        MarkRow(shown.Row(y), rows.Row(y), shown.Width(), marks.Row(y));
        std::memcpy(shown.Row(y), rows.Row(y), static_cast<std::size_t>(shown.Width()) * 3);
    }
}

/// Again the definition.
void PaintPixels(const DibHeader* mask, DibHeader* frame, PixelValue value) {
    for (std::int32_t y = 0; y < mask->biHeight; ++y) {
        for (std::int32_t x = 0; x < mask->biWidth; ++x) {
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

/// The same for two pixels a byte, the first in its upper half.
void PaintHalfBytes(const std::uint8_t* mask, std::int32_t width, std::uint8_t* row, unsigned value) {
    for (std::int32_t x = 0; x < width; x += 2, ++row) {
        const unsigned marks = mask[x / 8] >> (6 - x % 8) & 3U;
        const unsigned paint = (marks & 2 ? 0xF0U : 0U) | (marks & 1 ? 0x0FU : 0U);
        *row = static_cast<std::uint8_t>((*row & ~paint) | (value * 0x11 & paint));
    }
}

using RowPainter = void (*)(const std::uint8_t* mask, std::int32_t width, std::uint8_t* row, unsigned value);

/// Null where only the definition will do.
RowPainter RowPainterFor(int bits, PixelValue value) {
    if (bits == 4) return PaintHalfBytes;
    if (bits == 8) return PaintRow<1>;
    if (bits == 24 && value == 0) return PaintRow<3>;
    return nullptr;
}

void PaintMarked(const DibHeader* mask, DibHeader* frame, PixelValue value) {
    const ConstRowView marks(mask);
    const RowView rows(frame);
    const bool sameSize = marks.Width() == rows.Width() && marks.Height() == rows.Height();
    const RowPainter paintRow = RowPainterFor(rows.Bits(), value);
    if (!sameSize || paintRow == nullptr) {
        PaintPixels(mask, frame, value);
        return;
    }
    for (std::int32_t y = 0; y < rows.Height(); ++y)
        paintRow(marks.Row(y), rows.Width(), rows.Row(y), value);
}

/// Table entries lie blue, green, red behind the header.
void SetTableEntry(DibHeader* frame, int index, PixelValue colour) {
    auto* entry = reinterpret_cast<std::uint8_t*>(frame) + frame->biSize + 4 * index;
    entry[0] = static_cast<std::uint8_t>(BlueOf(colour));
    entry[1] = static_cast<std::uint8_t>(GreenOf(colour));
    entry[2] = static_cast<std::uint8_t>(RedOf(colour));
}

} // namespace

bool MarkUnchanged(OwnedDib& reference, FrameRecord& frame, PixelValue matte) {
    if (!reference) {
        reference = OwnedDib(GlobalDuplicate(frame.image));
        return static_cast<bool>(reference);
    }
    const LockedDib shown(reference.Get()), picture(frame.image);
    if (!shown || !picture) return false;
    OwnedDib mask(DibCreate(shown->biWidth, shown->biHeight, nullptr, 1));
    {
        const LockedDib marks(mask.Get());
        if (!marks) return false;
        const bool alike = Covers24(shown.Get(), picture->biWidth, picture->biHeight) &&
                           Covers24(picture.Get(), shown->biWidth, shown->biHeight);
        (alike ? MarkRows : MarkPixels)(shown.Get(), picture.Get(), marks.Get());
    }
    GlobalDestroy(frame.mask);
    frame.mask = mask.Release();
    frame.transparentIndex = static_cast<std::int32_t>(matte);
    return true;
}

bool PaintUnchanged(FrameRecord& frame, int slot, PixelValue matte) {
    if (frame.mask == 0) return true;
    const LockedDib mask(frame.mask), picture(frame.image);
    if (!mask || !picture) return false;
    if (picture->biBitCount > 8) {
        // Looked for from black up, and black never counts as used: so changed black pixels show through too.
        PaintMarked(mask.Get(), picture.Get(), MakeColour(0, 0, 0));
        frame.transparentIndex = 0;
        return true;
    }
    if (slot >= 1 << picture->biBitCount) return false;
    frame.transparentIndex = slot;
    if (slot < 0) return true;
    PaintMarked(mask.Get(), picture.Get(), static_cast<PixelValue>(slot));
    SetTableEntry(picture.Get(), slot, matte);
    return true;
}

} // namespace lumafold
