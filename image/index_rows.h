// Rows of colour-table indices: packed 1, 4 or 8 bits each as pictures hold them, and one a byte as loops
// like them.
#pragma once

#include <span>

#include "image/row_view.h"
#include "platform/allocation.h"

namespace lumafold {

/// As many indices as there is room for, from a row of 1, 4 or 8 bits a pixel.
void UnpackIndices(const std::uint8_t* row, int bits, std::span<std::uint8_t> indices);

/// Writes the bytes that the pixels lie in; what is left over of the last one is zero. An index that 4 bits
/// cannot hold loses its upper ones and any but 0 sets a single bit, as in DibSetPixel.
void PackIndices(std::span<const std::uint8_t> indices, int bits, std::uint8_t* row);

/// Fills an indexed picture row by row from the top: `indexRow`(y, indices) gives each row's indices. False
/// when memory is short.
template <typename IndexRow>
bool FillIndexed(DibHeader& picture, IndexRow indexRow) {
    const RowView rows(picture);
    const bool packs = rows.Bits() != 8;
    Array<std::uint8_t> indices(packs ? static_cast<std::size_t>(rows.Width()) : 0);
    if (!indices) return false;
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        indexRow(y, packs ? indices.data() : rows.Row(y));
        if (packs) PackIndices(indices, rows.Bits(), rows.Row(y));
    }
    return true;
}

} // namespace lumafold
