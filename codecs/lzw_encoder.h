// The compression of GIF picture data: variable-width codes, least significant bit first. Only the code
// stream; the code size and the cutting into sub-blocks are the writer's.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "codecs/index_frames.h"

namespace lumafold {

/// What becomes of the table of strings once it is full. Noise packs better when it is kept, since short
/// strings take long to be learnt; what changes from place to place when it is emptied at once.
enum class FullTable { Emptied, KeptWhileUseful };

/// The code stream of `pixels`, their entries each below 2^codeBits; `codeBits` is 2 to 8.
std::vector<std::uint8_t> EncodeLzw(std::span<const ChoicePixel> pixels, int codeBits, FullTable fullTable);

} // namespace lumafold
