#include "codecs/png_rows.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>

#include <libdeflate.h>
#include <zlib.h>

namespace lumafold {
namespace {

using Byte = std::uint8_t;

/// The byte to the left, above, or above and left, whichever is nearest to left + above - aboveLeft. Written
/// so that compilers do many at a time.
Byte Paeth(int left, int above, int aboveLeft) {
    const int toLeft = std::abs(above - aboveLeft), toAbove = std::abs(left - aboveLeft);
    const int toAboveLeft = std::abs(above + left - 2 * aboveLeft);
    const int other = toAbove <= toAboveLeft ? above : aboveLeft;
    return static_cast<Byte>(toLeft <= toAbove && toLeft <= toAboveLeft ? left : other);
}

/// What remains of a row when each byte is guessed. `row` and `above` have `each` zero bytes before them.
template <typename Guess>
void Remainder(const Byte* row, const Byte* above, std::size_t each, std::size_t length, Byte* out,
               Guess guess) {
    const Byte *left = row - each, *aboveLeft = above - each;
    for (std::size_t i = 0; i < length; ++i)
        out[i] = static_cast<Byte>(row[i] - guess(left[i], above[i], aboveLeft[i]));
}

void ApplyFilter(int filter, const Byte* row, const Byte* above, std::size_t each, std::size_t length,
                 Byte* out) {
    const auto with = [&](auto guess) { Remainder(row, above, each, length, out, guess); };
    switch (filter) {
    case 0:
        return with([](int, int, int) { return 0; });
    case 1:
        return with([](int left, int, int) { return left; });
    case 2:
        return with([](int, int up, int) { return up; });
    case 3:
        return with([](int left, int up, int) { return (left + up) >> 1; });
    default:
        return with([](int left, int up, int upLeft) { return Paeth(left, up, upLeft); });
    }
}

/// How many bits the bytes of a row need, each counted by its distance from zero.
std::uint64_t BitsToSay(std::span<const Byte> row) {
    std::uint64_t all = 0;
    constexpr std::size_t kPiece = 1024;
    for (; !row.empty(); row = row.subspan(std::min(kPiece, row.size()))) {
        std::uint32_t sum = 0;
        for (const Byte byte : row.first(std::min(kPiece, row.size()))) {
            const Byte size = std::min(byte, static_cast<Byte>(-byte));
            sum += static_cast<Byte>((size >= 1) + (size >= 2) + (size >= 4) + (size >= 8) + (size >= 16) +
                                     (size >= 32) + (size >= 64));
        }
        all += sum;
    }
    return all;
}

/// By zlib.
std::vector<std::uint8_t> DeflateBy(std::span<const std::uint8_t> bytes, int level, int strategy) {
    constexpr int kWindowBits = 15, kMostMemory = 9;
    z_stream stream{};
    if (deflateInit2(&stream, level, Z_DEFLATED, kWindowBits, kMostMemory, strategy) != Z_OK)
        throw std::bad_alloc();
    const std::unique_ptr<z_stream, decltype(&deflateEnd)> owner(&stream, deflateEnd);
    std::vector<std::uint8_t> packed;
    std::array<std::uint8_t, 1 << 16> room;
    constexpr std::size_t kPiece = 1 << 30; // the library counts in 32 bits
    int state = Z_OK;
    while (state != Z_STREAM_END) {
        if (stream.avail_in == 0) {
            const auto piece = bytes.first(std::min(kPiece, bytes.size()));
            bytes = bytes.subspan(piece.size());
            stream.next_in = const_cast<std::uint8_t*>(piece.data());
            stream.avail_in = static_cast<uInt>(piece.size());
        }
        stream.next_out = room.data();
        stream.avail_out = static_cast<uInt>(room.size());
        state = deflate(&stream, bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
        packed.insert(packed.end(), room.begin(), room.end() - stream.avail_out);
    }
    packed.shrink_to_fit();
    return packed;
}

} // namespace

std::vector<std::uint8_t> FilterRows(const PngRows& rows, RowFilter filter) {
    const std::size_t length = rows.rowBytes, each = rows.pixelBytes;
    std::vector<Byte> filtered;
    filtered.reserve(rows.bytes.size() + rows.bytes.size() / length);
    // Both rows begin with the zeros that stand for what lies left of the picture.
    std::vector<Byte> above(each + length), row(each + length), tried(length), best(length);
    for (std::span<const Byte> rest = rows.bytes; !rest.empty(); rest = rest.subspan(length)) {
        if (filter == RowFilter::None) {
            filtered.push_back(0);
            filtered.insert(filtered.end(), rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length));
            continue;
        }
        std::copy_n(rest.begin(), length, row.begin() + static_cast<std::ptrdiff_t>(each));
        std::uint64_t least = ~std::uint64_t{0};
        int chosen = 0;
        for (int i = 0; i < 5; ++i) {
            ApplyFilter(i, row.data() + each, above.data() + each, each, length, tried.data());
            const std::uint64_t bits = BitsToSay(tried);
            if (bits >= least) continue;
            least = bits;
            chosen = i;
            tried.swap(best);
        }
        filtered.push_back(static_cast<Byte>(chosen));
        filtered.insert(filtered.end(), best.begin(), best.end());
        row.swap(above);
    }
    return filtered;
}

std::vector<std::uint8_t> Deflate(std::span<const std::uint8_t> bytes, int effort) {
    struct Free {
        void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
    };
    const std::unique_ptr<libdeflate_compressor, Free> compressor(
        libdeflate_alloc_compressor(std::clamp(effort, 1, 12)));
    if (!compressor) throw std::bad_alloc();
    const std::size_t most = libdeflate_zlib_compress_bound(compressor.get(), bytes.size());
    const auto packed = std::make_unique_for_overwrite<std::uint8_t[]>(most);
    const std::size_t length =
        libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(), packed.get(), most);
    if (length == 0) throw std::bad_alloc();
    return {packed.get(), packed.get() + length};
}

std::vector<std::uint8_t> DeflateRuns(std::span<const std::uint8_t> bytes) {
    return DeflateBy(bytes, 6, Z_RLE);
}

std::vector<std::uint8_t> DeflateFlat(std::span<const std::uint8_t> bytes) {
    return DeflateBy(bytes, 9, Z_DEFAULT_STRATEGY);
}

} // namespace lumafold
