// Grey 24-bit pictures, whose three channels are equal: masks are. One channel then stands for all.
#pragma once

#include "image/row_view.h"

namespace lumafold {

/// Loops look at sixteen pixels at once.
inline constexpr std::size_t kBlockPixels = 16;
inline constexpr std::size_t kBlockBytes = kBlockPixels * 3;

/// Whether every pixel of a block has three equal channels; reads one byte beyond it.
inline bool IsGreyBlock(const std::uint8_t* block) {
    static constexpr auto kInsidePixel = [] {
        std::array<std::uint8_t, kBlockBytes> pattern{};
        for (std::size_t i = 0; i < kBlockBytes; ++i) {
            pattern[i] = i % 3 == 2 ? 0 : 0xFF;
        }
        return pattern;
    }();
    std::uint8_t differs = 0;
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
        differs |= static_cast<std::uint8_t>((block[i] ^ block[i + 1]) & kInsidePixel[i]);
    }
    return differs == 0;
}

inline bool IsGrey(const ConstRowView& rows) {
    const std::size_t bytes = static_cast<std::size_t>(rows.Width()) * 3;
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        std::size_t i = 0;
        for (; i + kBlockBytes < bytes; i += kBlockBytes) {
            if (!IsGreyBlock(row + i)) return false;
        }
        for (; i < bytes; i += 3) {
            if (row[i] != row[i + 1] || row[i + 1] != row[i + 2]) return false;
        }
    }
    return true;
}

/// The one channel of a grey picture, row after row from the top, without padding.
inline void GatherGrey(const ConstRowView& rows, std::uint8_t* plane) {
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::int32_t x = 0; x < rows.Width(); ++x, row += 3) {
            *plane++ = *row;
        }
    }
}

/// The way back. Four pixels are three words: a byte at a time takes twice as long.
inline void SpreadGrey(const std::uint8_t* plane, const RowView& rows) {
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* row = rows.Row(y);
        std::int32_t x = 0;
        for (; x + 4 <= rows.Width(); x += 4, plane += 4, row += 12) {
            const std::uint32_t g0 = plane[0], g1 = plane[1], g2 = plane[2], g3 = plane[3];
            const std::uint32_t words[3] = {g0 * 0x010101 | g1 << 24, g1 * 0x0101 | g2 * 0x01010000,
                                            g2 | g3 * 0x01010100};
            std::memcpy(row, words, sizeof(words));
        }
        for (; x < rows.Width(); ++x, row += 3) {
            row[0] = row[1] = row[2] = *plane++;
        }
    }
}

} // namespace lumafold
