#include "codecs/pieced_file.h"

#include <utility>

namespace lumafold {
namespace {

constexpr std::size_t kLarge = 1 << 16; // bytes

} // namespace

void PiecedFile::Add(std::span<const std::uint8_t> bytes) {
    if (pieces_.empty() || pieces_.back().size() >= kLarge) pieces_.emplace_back();
    pieces_.back().insert(pieces_.back().end(), bytes.begin(), bytes.end());
}

void PiecedFile::Add(std::vector<std::uint8_t>&& bytes) {
    if (bytes.size() < kLarge) {
        Add(std::span<const std::uint8_t>(bytes));
    } else {
        pieces_.push_back(std::move(bytes));
    }
}

std::vector<std::uint8_t> PiecedFile::Join() && {
    if (pieces_.size() == 1) return std::move(pieces_.front());
    std::size_t bytes = 0;
    for (const auto& piece : pieces_)
        bytes += piece.size();
    std::vector<std::uint8_t> whole;
    whole.reserve(bytes);
    for (auto& piece : std::exchange(pieces_, {}))
        whole.insert(whole.end(), piece.begin(), piece.end());
    return whole;
}

} // namespace lumafold
