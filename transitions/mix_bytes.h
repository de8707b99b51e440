// The one way two bytes are weighed against each other, and its loop over rows. Eight bytes are worked on at
// once, so the arithmetic stays within 16 bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumafold {

/// x / 255 for 0 <= x < 65535.
constexpr std::uint16_t DivideBy255(std::uint16_t x) {
    return static_cast<std::uint16_t>(static_cast<std::uint16_t>(x + 1 + (x >> 8)) >> 8);
}

/// Both quotients truncate before they are added, so two equal bytes may come out one level darker
/// (docs/quirks.md 12).
constexpr std::uint8_t Mix(std::uint8_t a, std::uint8_t b, std::uint8_t shareOfB) {
    const auto partB = static_cast<std::uint16_t>(b * shareOfB);
    const auto partA = static_cast<std::uint16_t>(a * static_cast<std::uint8_t>(255 - shareOfB));
    return static_cast<std::uint8_t>(DivideBy255(partB) + DivideBy255(partA));
}

/// The three ranges must not overlap.
inline void MixBytes(const std::uint8_t* __restrict a, const std::uint8_t* __restrict b,
                     std::uint8_t* __restrict out, std::size_t bytes, std::uint8_t shareOfB) {
    for (std::size_t i = 0; i < bytes; ++i)
        out[i] = Mix(a[i], b[i], shareOfB);
}

} // namespace lumafold
