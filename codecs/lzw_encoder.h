// The compression of GIF picture data: variable-width codes, least significant bit first. Only the code
// stream; the code size and the cutting into sub-blocks are the writer's.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

/// A pixel as either of two indexes: where both show the same, whichever packs better is written.
struct LzwPixel {
    std::uint8_t index, other;
};

/// The code stream of `pixels`, their indexes each below 2^codeBits; `codeBits` is 2 to 8.
std::vector<std::uint8_t> EncodeLzw(std::span<const LzwPixel> pixels, int codeBits);

} // namespace lumafold
