#include "image/index_rows.h"

namespace lumafold {

void UnpackIndices(const std::uint8_t* row, int bits, std::span<std::uint8_t> indices) {
    if (bits == 8) {
        std::copy_n(row, indices.size(), indices.data());
        return;
    }
    const auto each = static_cast<std::size_t>(bits);
    for (std::size_t bit = 0, x = 0; x < indices.size(); ++x, bit += each)
        indices[x] = static_cast<std::uint8_t>(row[bit / 8] >> (8 - each - bit % 8) & ((1U << each) - 1));
}

void PackIndices(std::span<const std::uint8_t> indices, int bits, std::uint8_t* row) {
    const std::size_t count = indices.size();
    if (bits == 8) {
        std::copy_n(indices.data(), count, row);
    } else if (bits == 4) {
        const auto pair = [&](std::size_t x, unsigned second) {
            row[x / 2] = static_cast<std::uint8_t>((indices[x] << 4 & 0xF0) | (second & 0x0F));
        };
        for (std::size_t x = 0; x + 1 < count; x += 2)
            pair(x, indices[x + 1]);
        if (count % 2 != 0) pair(count - 1, 0);
    } else {
        for (std::size_t x = 0; x < count; x += 8) {
            unsigned byte = 0;
            for (std::size_t i = 0; i < 8 && x + i < count; ++i)
                byte |= indices[x + i] != 0 ? 0x80U >> i : 0;
            row[x / 8] = static_cast<std::uint8_t>(byte);
        }
    }
}

} // namespace lumafold
