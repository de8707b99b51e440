#include "codecs/lzw_encoder.h"

#include <algorithm>
#include <array>

namespace lumafold {
namespace {

constexpr unsigned kMostCodes = 4096;
constexpr int kMostCodeBits = 12;

/// Which code stands for a known string followed by one more index. Open addressing at most half full; key
/// and code share a word, so that the table stays near the processor.
class StringTable {
public:
    void Clear() { slots_.fill(0); }

    /// The code, or 0 where the string is new (0 is never the code of a longer string).
    unsigned Find(unsigned prefix, unsigned index) const {
        return slots_[SlotOf(Key(prefix, index))] & (kMostCodes - 1);
    }
    void Add(unsigned prefix, unsigned index, unsigned code) {
        const std::uint32_t key = Key(prefix, index);
        slots_[SlotOf(key)] = key | code;
    }

private:
    static constexpr std::size_t kSlots = 2 * kMostCodes;

    static std::uint32_t Key(unsigned prefix, unsigned index) { return prefix << 20 | index << 12; }
    std::size_t SlotOf(std::uint32_t key) const {
        std::size_t slot = (key * 2654435761U) >> 19;
        while (slots_[slot] != 0 && (slots_[slot] ^ key) >= kMostCodes) {
            slot = (slot + 1) % kSlots;
        }
        return slot;
    }

    std::array<std::uint32_t, kSlots> slots_{};
};

class CodeStream {
public:
    void Put(unsigned code, int bits) {
        pending_ |= std::uint64_t{code} << held_;
        held_ += bits;
        if (held_ >= 32) Store(4);
    }
    std::vector<std::uint8_t> Finish() {
        Store((held_ + 7) / 8);
        return std::move(bytes_);
    }

private:
    void Store(int count) {
        for (int i = 0; i < count; ++i, pending_ >>= 8) {
            bytes_.push_back(static_cast<std::uint8_t>(pending_));
        }
        held_ -= 8 * count;
    }

    std::vector<std::uint8_t> bytes_;
    std::uint64_t pending_ = 0;
    int held_ = 0;
};

class Encoder {
public:
    Encoder(std::span<const ChoicePixel> pixels, int codeBits, FullTable fullTable)
        : pixels_(pixels), codeBits_(codeBits), fullTable_(fullTable) {}

    std::vector<std::uint8_t> Encode() {
        StartAgain();
        for (std::size_t at = 0; at < pixels_.size();) {
            Match match = Best(at);
            if (at > 0) match = Learn(at, match);
            stream_.Put(match.code, width_);
            last_ = match.code;
            at += match.length;
            Count(match.length);
        }
        // The reader has caught up by now, and may expect the end in the wider code.
        if (next_ == 1U << width_ && width_ < kMostCodeBits) ++width_;
        stream_.Put(clear_ + 1, width_);
        return stream_.Finish();
    }

private:
    /// The longest known string that the pixels read like, and the entry it begins with.
    struct Match {
        unsigned first, code;
        std::size_t length;
    };
    enum class Choice { Drawn, Other };

    /// All pixels of a string are read in the one way or in the other: strings that mix the two hardly ever
    /// come again.
    Match Best(std::size_t at) const {
        bool free = false;
        const Match other = Longest<Choice::Other>(at, free);
        if (!free) return other;
        const Match drawn = Longest<Choice::Drawn>(at, free);
        return drawn.length > other.length ? drawn : other;
    }
    /// Sets `free` when there was a choice among the pixels looked at.
    template <Choice choice>
    Match Longest(std::size_t at, bool& free) const {
        const auto entry = [&](ChoicePixel pixel) -> unsigned {
            return choice == Choice::Drawn ? pixel.drawn : pixel.other;
        };
        free |= pixels_[at].IsFree();
        const unsigned first = entry(pixels_[at]);
        Match match{first, first, 1};
        for (; at + match.length < pixels_.size(); ++match.length) {
            const ChoicePixel pixel = pixels_[at + match.length];
            free |= pixel.IsFree();
            const unsigned longer = table_.Find(match.code, entry(pixel));
            if (longer == 0) break;
            match.code = longer;
        }
        return match;
    }
    /// Adds the last string and the index that follows it, or empties the full table; what then is the match.
    Match Learn(std::size_t at, Match match) {
        if (next_ == kMostCodes) {
            if (fullTable_ == FullTable::KeptWhileUseful && IsUseful()) return match;
            StartAgain();
            return Best(at);
        }
        // A reader is one string behind, so the width grows with the first code that needs it, not before.
        if (next_ == 1U << width_) ++width_;
        const unsigned learnt = next_++;
        // Where one string reads in two ways the longer may be known already; its number is used up all the
        // same.
        if (table_.Find(last_, match.first) != 0) return match;
        table_.Add(last_, match.first, learnt);
        // The new string itself may come next: the last one over again, and its first index once more.
        const std::size_t end = at + match.length;
        const bool again = match.code == last_ && end < pixels_.size() &&
                           (pixels_[end].drawn == match.first || pixels_[end].other == match.first);
        return again ? Match{match.first, learnt, match.length + 1} : match;
    }
    void Count(std::size_t pixels) {
        tablePixels_ += pixels;
        tableBits_ += static_cast<unsigned>(width_);
        // Grows to kOne for each pixel a code, over some hundred codes.
        recentLength_ += (static_cast<std::int64_t>(pixels) * kOne - recentLength_) / 128;
    }
    /// The codes of late do better than all since the table was empty, the costly first ones among them.
    bool IsUseful() const {
        return static_cast<std::uint64_t>(recentLength_) * tableBits_ >= tablePixels_ * kOne * kMostCodeBits;
    }
    void StartAgain() {
        stream_.Put(clear_, width_);
        tablePixels_ = tableBits_ = 0;
        table_.Clear();
        next_ = clear_ + 2;
        width_ = codeBits_ + 1;
    }

    std::span<const ChoicePixel> pixels_;
    int codeBits_;
    FullTable fullTable_;
    unsigned clear_ = 1U << codeBits_;
    int width_ = codeBits_ + 1;
    unsigned next_ = 0, last_ = 0;
    static constexpr std::int64_t kOne = 1 << 16;
    std::uint64_t tablePixels_ = 0, tableBits_ = 0; ///< coded since the table was empty
    std::int64_t recentLength_ = 0;                 ///< of a string, in kOne
    StringTable table_;
    CodeStream stream_;
};

} // namespace

std::vector<std::uint8_t> EncodeLzw(std::span<const ChoicePixel> pixels, int codeBits, FullTable fullTable) {
    return Encoder(pixels, codeBits, fullTable).Encode();
}

} // namespace lumafold
