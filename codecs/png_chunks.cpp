#include "codecs/png_chunks.h"

#include <algorithm>
#include <bit>
#include <cctype>

#include <libdeflate.h>

#include "codecs/decode_common.h"
#include "codecs/file_kinds.h"

namespace lumafold {
namespace {

constexpr std::string_view kKeyword("Comment\0", 8);
constexpr std::string_view kPlainUtf8("\0\0\0\0", 4); // not compressed, no language, no translated keyword

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Well-formed enough to be told from single-byte text, in which such sequences hardly occur.
bool IsUtf8(const std::string& text) {
    int following = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (following > 0) {
            if ((byte & 0xC0) != 0x80) return false;
            --following;
        } else if (byte >= 0x80) {
            following = std::countl_one(byte) - 1;
            if (following < 1 || following > 3) return false;
        }
    }
    return following == 0;
}

/// Whether a picture can do without this chunk. Frames of animations come in such ones too, but there a
/// missing one would be seen.
bool IsDispensable(std::string_view type) {
    return (type.front() & 0x20) != 0 && type != "fcTL" && type != "fdAT";
}

/// Of bytes that follow those of which `before` is the sum, 0 for none.
std::uint32_t Checksum(std::uint32_t before, std::span<const std::uint8_t> bytes) {
    // The library begins anew where there is no pointer.
    return bytes.empty() ? before : libdeflate_crc32(before, bytes.data(), bytes.size());
}

} // namespace

ChunkWriter::Data& ChunkWriter::Data::U8(std::uint32_t value) {
    bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
}

ChunkWriter::Data& ChunkWriter::Data::U16(std::uint32_t value) { return U8(value >> 8).U8(value); }

ChunkWriter::Data& ChunkWriter::Data::U32(std::uint32_t value) { return U16(value >> 16).U16(value); }

ChunkWriter::Data& ChunkWriter::Data::Bytes(std::span<const std::uint8_t> bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
}

ChunkWriter::Data& ChunkWriter::Data::Text(std::string_view text) {
    return Bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void ChunkWriter::Put(std::string_view type, const Data& data, std::vector<std::uint8_t> more) {
    Data head;
    head.U32(static_cast<std::uint32_t>(data.Get().size() + more.size())).Text(type).Bytes(data.Get());
    file_.Add(head.Get());
    const std::uint32_t sum = Checksum(Checksum(0, std::span(head.Get()).subspan(4)), more);
    file_.Add(std::move(more));
    file_.Add(Data().U32(sum).Get());
}

void ChunkWriter::PutComment(const std::string& text) {
    // A zero byte would end a reader's string, and is no text anyway.
    const std::string shown = text.substr(0, text.find('\0'));
    if (shown.empty()) return;
    const bool utf8 = !IsAscii(shown) && IsUtf8(shown);
    Put(utf8 ? "iTXt" : "tEXt", Data().Text(kKeyword).Text(utf8 ? kPlainUtf8 : "").Text(shown));
}

void Chunk::Need(std::size_t bytes) const {
    if (data.size() < bytes) throw DecodeError{"the " + std::string(type) + " chunk is too short"};
}

std::uint32_t Chunk::Big(std::size_t at, std::size_t bytes) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
        value = value << 8 | data[at + i];
    return value;
}

std::string Chunk::Comment() const {
    std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    if (!text.starts_with(kKeyword)) return {};
    text.remove_prefix(kKeyword.size());
    if (type == "tEXt") return std::string(text);
    if (type != "iTXt" || !text.starts_with(kPlainUtf8)) return {};
    return std::string(text.substr(kPlainUtf8.size()));
}

ChunkReader::ChunkReader(std::span<const std::uint8_t> file)
    : rest_(file.subspan(std::min(kPngSignature.size(), file.size()))) {}

bool ChunkReader::Next(Chunk& chunk) {
    while (!rest_.empty()) {
        if (Take(chunk)) return true;
    }
    return false;
}

/// False for a damaged one that is left out.
bool ChunkReader::Take(Chunk& chunk) {
    constexpr std::size_t kAround = 12; // length, type, checksum
    if (rest_.size() < kAround) throw DecodeError{kEndsTooEarly};
    const Chunk head{"", rest_};
    const std::size_t length = head.U32(0);
    if (length > rest_.size() - kAround) throw DecodeError{kEndsTooEarly};
    const bool whole = Checksum(0, rest_.subspan(4, length + 4)) == head.U32(8 + length);
    chunk = {{reinterpret_cast<const char*>(rest_.data()) + 4, 4}, rest_.subspan(8, length)};
    // Types are letters, and messages name them.
    if (!std::all_of(chunk.type.begin(), chunk.type.end(),
                     [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }))
        throw DecodeError{"the data is damaged (no chunk where one must be)"};
    rest_ = rest_.subspan(length + kAround);
    if (!whole && !IsDispensable(chunk.type)) throw DecodeError{"the data is damaged (checksum)"};
    return whole;
}

} // namespace lumafold
