// The chunks that PNG and MNG files are made of, written and read: length, type, data and checksum after
// checksum; numbers have their high byte first.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codecs/pieced_file.h"

namespace lumafold {

class ChunkWriter {
public:
    explicit ChunkWriter(std::string_view signature) { file_.Add(Data().Text(signature).Get()); }

    class Data {
    public:
        Data& U8(std::uint32_t value);
        Data& U16(std::uint32_t value);
        Data& U32(std::uint32_t value);
        Data& Bytes(std::span<const std::uint8_t> bytes);
        Data& Text(std::string_view text);
        const std::vector<std::uint8_t>& Get() const { return bytes_; }

    private:
        std::vector<std::uint8_t> bytes_;
    };
    void Put(std::string_view type, const Data& data = {}) { Put(type, data, {}); }
    /// Data in two pieces, so that the second need not be copied.
    void Put(std::string_view type, const Data& data, std::vector<std::uint8_t> more);
    /// A text chunk under the keyword for comments; none for an empty text.
    void PutComment(const std::string& text);
    PiecedFile TakePieces() { return std::move(file_); }
    std::vector<std::uint8_t> Take() { return std::move(file_).Join(); }

private:
    PiecedFile file_;
};

struct Chunk {
    std::string_view type;
    std::span<const std::uint8_t> data;

    std::uint32_t U32(std::size_t at) const { return Big(at, 4); }
    std::uint32_t U16(std::size_t at) const { return Big(at, 2); }
    std::uint32_t U8(std::size_t at) const { return Big(at, 1); }
    /// Throws DecodeError where the data is shorter; the numbers take no care.
    void Need(std::size_t bytes) const;
    /// Of a text chunk under the keyword for comments, not compressed; "" for any other.
    std::string Comment() const;

private:
    std::uint32_t Big(std::size_t at, std::size_t bytes) const;
};

/// The chunks of a file behind its signature, one after the other, each as it should be. Damaged ones that a
/// picture can do without are left out.
class ChunkReader {
public:
    explicit ChunkReader(std::span<const std::uint8_t> file);

    /// False at the end. Throws DecodeError where the file ends too early or is damaged.
    bool Next(Chunk& chunk);

private:
    bool Take(Chunk& chunk);

    std::span<const std::uint8_t> rest_;
};

} // namespace lumafold
