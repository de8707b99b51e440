// Frames with palettes, cut to what they change, in the entries of a file's own colour table. Entries are
// given out as frames come to need them, so that the first frames get by with small ones.
#pragma once

#include "codecs/frame_changes.h"

namespace lumafold {

/// A pixel as either of two entries: where both show the same, whichever packs better is written.
struct ChoicePixel {
    std::uint8_t drawn, other;
    bool IsFree() const { return drawn != other; }
};

/// A rectangle of a frame, row by row. Pixels that need not be drawn may be `hole` instead; those where
/// nothing was ever drawn are `hole` either way.
struct IndexCut {
    Rect rect{};
    int hole = -1;   ///< -1 for none
    int entries = 0; ///< highest entry in use plus one
    bool mayLeaveOut = false;
    std::vector<ChoicePixel> pixels;
};

/// How many pixels of a rectangle show each index: those that change, those that do not; and whether there
/// are any where nothing was ever drawn.
struct IndexUse {
    std::array<std::uint32_t, 256> drawn{}, kept{};
    bool anyKept = false, holes = false;

    IndexUse(const Screen& screen, const Rect& rect);
};

class FileTable {
public:
    static constexpr int kMostEntries = 256;

    int Entries() const { return static_cast<int>(indexes_.size()); }
    /// Gives an entry to every index in use that has none yet, the most frequent first. False when there are
    /// not enough.
    bool Admit(const IndexUse& use);
    /// Keeps entry 0 for holes, until all others are taken. For an empty table.
    void ReserveHole() { indexes_.push_back(kHoleIndex); }
    /// Gives an entry to holes; false when there is none left.
    bool AdmitHole();
    int Hole() const { return hole_; }
    bool Has(PixelValue index) const { return entries_[index] >= 0; }
    int EntryOf(PixelValue index) const { return entries_[index]; }

    /// The colours in the entries' order. Where there are less than `atLeast`, those of the palette's first
    /// indexes that got no entry follow.
    std::vector<Rgb> Colours(const Palette& palette, std::size_t atLeast = 0) const;

    /// What `screen` shows in `rect`, all of it admitted. `hole` may be an entry that nothing draws, or -1.
    IndexCut Cut(const Screen& screen, const Rect& rect, int hole) const;

private:
    static constexpr int kHoleIndex = -1;
    std::array<std::int16_t, 256> entries_ = NoEntries();
    std::vector<std::int16_t> indexes_; ///< by entry
    int hole_ = -1;

    bool IsReserved() const { return hole_ < 0 && !indexes_.empty() && indexes_.front() == kHoleIndex; }
    static std::array<std::int16_t, 256> NoEntries() {
        std::array<std::int16_t, 256> none{};
        none.fill(-1);
        return none;
    }
};

} // namespace lumafold
