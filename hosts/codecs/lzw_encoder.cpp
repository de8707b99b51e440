#include "hosts/codecs/lzw_encoder.h"

#include <algorithm>
#include <array>

namespace lumafold {
namespace {

constexpr unsigned kMostCodes = 4096;
constexpr int kMostCodeBits = 12;

/// Which code stands for a known string followed by one more index. Open addressing at most half full.
class StringTable {
public:
    void Clear() { slots_.fill({}); }

    /// The code, or 0 where the string is new (0 is never the code of a longer string).
    unsigned Find(unsigned prefix, unsigned index) const { return slots_[SlotOf(Key(prefix, index))].code; }
    void Add(unsigned prefix, unsigned index, unsigned code) {
        const std::uint32_t key = Key(prefix, index);
        slots_[SlotOf(key)] = {key, static_cast<std::uint16_t>(code)};
    }

private:
    struct Slot {
        std::uint32_t key;
        std::uint16_t code;
    };
    static constexpr std::size_t kSlots = 2 * kMostCodes;

    static std::uint32_t Key(unsigned prefix, unsigned index) { return prefix << 8 | index; }
    std::size_t SlotOf(std::uint32_t key) const {
        std::size_t slot = (key * 2654435761U) >> 19;
        while (slots_[slot].code != 0 && slots_[slot].key != key) {
            slot = (slot + 1) % kSlots;
        }
        return slot;
    }

    std::array<Slot, kSlots> slots_{};
};

class CodeStream {
public:
    void Put(unsigned code, int bits) {
        pending_ |= code << held_;
        for (held_ += bits; held_ >= 8; held_ -= 8) {
            bytes_.push_back(static_cast<std::uint8_t>(pending_));
            pending_ >>= 8;
        }
    }
    std::vector<std::uint8_t> Finish() {
        if (held_ > 0) bytes_.push_back(static_cast<std::uint8_t>(pending_));
        return std::move(bytes_);
    }

private:
    std::vector<std::uint8_t> bytes_;
    std::uint32_t pending_ = 0;
    int held_ = 0;
};

} // namespace

std::vector<std::uint8_t> EncodeLzw(std::span<const std::uint8_t> indexes, int codeBits) {
    const unsigned clear = 1U << codeBits, end = clear + 1;
    StringTable table;
    CodeStream stream;
    unsigned next = end + 1;
    int width = codeBits + 1;
    stream.Put(clear, width);
    if (!indexes.empty()) {
        unsigned prefix = indexes[0];
        for (const std::uint8_t index : indexes.subspan(1)) {
            if (const unsigned known = table.Find(prefix, index); known != 0) {
                prefix = known;
                continue;
            }
            stream.Put(prefix, width);
            if (next < kMostCodes) {
                // A reader is one string behind, so the width grows with the first code that needs it, not
                // before.
                if (next == 1U << width) ++width;
                table.Add(prefix, index, next++);
            } else {
                stream.Put(clear, width);
                table.Clear();
                next = end + 1;
                width = codeBits + 1;
            }
            prefix = index;
        }
        stream.Put(prefix, width);
        // The reader has caught up by now, and may expect the end in the wider code.
        if (next == 1U << width && width < kMostCodeBits) ++width;
    }
    stream.Put(end, width);
    return stream.Finish();
}

} // namespace lumafold
