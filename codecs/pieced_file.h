// A file in memory, in the pieces it was made of: what was packed for itself is not copied once more. A long
// animation would else need twice its size.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

class PiecedFile {
public:
    /// Copies `bytes` behind what is there.
    void Add(std::span<const std::uint8_t> bytes);
    /// Takes a large piece as it is, and copies a small one.
    void Add(std::vector<std::uint8_t>&& bytes);

    /// In order; valid until more is added.
    std::vector<std::span<const std::uint8_t>> Pieces() const { return {pieces_.begin(), pieces_.end()}; }
    /// All in one piece.
    std::vector<std::uint8_t> Join() &&;

private:
    std::vector<std::vector<std::uint8_t>> pieces_;
};

} // namespace lumafold
