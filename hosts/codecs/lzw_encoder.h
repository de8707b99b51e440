// The compression of GIF picture data: variable-width codes, least significant bit first. Only the code
// stream; the code size and the cutting into sub-blocks are the writer's.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

/// The code stream of `indexes`, each below 2^codeBits; `codeBits` is 2 to 8.
std::vector<std::uint8_t> EncodeLzw(std::span<const std::uint8_t> indexes, int codeBits);

} // namespace lumafold
