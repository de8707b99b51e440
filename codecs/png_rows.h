// Rows of PNG pictures, filtered and compressed as IDAT chunks hold them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

/// Rows as PNG orders their bytes, without a byte for the filter.
struct PngRows {
    std::size_t rowBytes, pixelBytes; ///< `pixelBytes` 1 for pixels of a byte or less
    std::span<const std::uint8_t> bytes;
};

/// What stands in front of a row is a guess of it from the bytes around, row by row the one that leaves least
/// to say; or nothing is guessed, as is best for indexes and for flat drawings.
enum class RowFilter { None, Least };

/// Each row behind the number of its filter.
std::vector<std::uint8_t> FilterRows(const PngRows& rows, RowFilter filter);

/// A zlib stream that says what repeats; `effort` 1 to 12. Throws std::bad_alloc.
std::vector<std::uint8_t> Deflate(std::span<const std::uint8_t> bytes, int effort);
/// One that says runs of a byte alone, and else how frequent each is: grain packs better without the short
/// repetitions that occur by chance. Throws std::bad_alloc.
std::vector<std::uint8_t> DeflateRuns(std::span<const std::uint8_t> bytes);
/// The same for what packs to a small part, where a longer search costs little: repetitions at their longest.
std::vector<std::uint8_t> DeflateFlat(std::span<const std::uint8_t> bytes);

} // namespace lumafold
