// One channel of a pixel whose channels are told by bit masks, as 16- and 32-bit pictures from outside have
// them.
#pragma once

#include <bit>
#include <cstdint>

namespace lumafold {

/// Brings a channel to 0 to 255, rounded to nearest; a mask without bits gives 0. The bits of a mask are
/// expected to stand together.
class MaskedChannel {
public:
    explicit MaskedChannel(std::uint32_t mask)
        : mask_(mask), shift_(mask == 0 ? 0 : std::countr_zero(mask)), most_(mask >> shift_) {}

    std::uint8_t Of(std::uint32_t pixel) const {
        const std::uint64_t value = (pixel & mask_) >> shift_;
        if (most_ == 0 || most_ == 255) return static_cast<std::uint8_t>(value); // spares a division
        return static_cast<std::uint8_t>((value * 255 + most_ / 2) / most_);
    }

private:
    std::uint32_t mask_;
    int shift_;
    std::uint32_t most_;
};

} // namespace lumafold
