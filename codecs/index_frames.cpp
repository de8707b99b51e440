#include "codecs/index_frames.h"

#include <algorithm>

namespace lumafold {

IndexUse::IndexUse(const Screen& screen, const Rect& rect) {
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x) {
            if (shown[x] == kNoPixel) {
                holes = true;
            } else {
                ++(changed[x] != 0 ? drawn : kept)[shown[x]];
                anyKept |= changed[x] == 0;
            }
        }
    }
}

bool FileTable::Admit(const IndexUse& use) {
    std::vector<std::int16_t> added;
    for (std::size_t index = 0; index < 256; ++index) {
        if (use.drawn[index] + use.kept[index] > 0 && !Has(static_cast<PixelValue>(index)))
            added.push_back(static_cast<std::int16_t>(index));
    }
    if (indexes_.size() + added.size() > kMostEntries + (IsReserved() ? 1U : 0U)) return false;
    const auto pixels = [&](std::int16_t index) {
        return use.drawn[static_cast<std::size_t>(index)] + use.kept[static_cast<std::size_t>(index)];
    };
    std::stable_sort(added.begin(), added.end(),
                     [&](std::int16_t a, std::int16_t b) { return pixels(a) > pixels(b); });
    for (const std::int16_t index : added) {
        const bool full = Entries() == kMostEntries;
        entries_[static_cast<std::size_t>(index)] =
            full ? std::int16_t{0} : static_cast<std::int16_t>(Entries());
        if (full) {
            indexes_.front() = index;
        } else {
            indexes_.push_back(index);
        }
    }
    return true;
}

bool FileTable::AdmitHole() {
    if (IsReserved()) {
        hole_ = 0;
        return true;
    }
    if (Entries() == kMostEntries) return false;
    hole_ = Entries();
    indexes_.push_back(kHoleIndex);
    return true;
}

std::vector<Rgb> FileTable::Colours(const Palette& palette, std::size_t atLeast) const {
    std::vector<Rgb> colours;
    for (const std::int16_t index : indexes_)
        colours.push_back(index == kHoleIndex ? Rgb{} : palette[static_cast<std::size_t>(index)]);
    for (std::size_t index = 0; index < palette.size() && colours.size() < atLeast; ++index) {
        if (!Has(static_cast<PixelValue>(index))) colours.push_back(palette[index]);
    }
    return colours;
}

IndexCut FileTable::Cut(const Screen& screen, const Rect& rect, int hole) const {
    IndexCut cut{rect, hole, 0, false, {}};
    const auto holeEntry = static_cast<std::uint8_t>(std::max(hole, 0));
    cut.pixels.resize(static_cast<std::size_t>(RectWidth(rect)) * static_cast<std::size_t>(RectHeight(rect)));
    ChoicePixel* to = cut.pixels.data();
    // By index, and behind them what kNoPixel stands for.
    std::array<std::uint8_t, 257> entryOf;
    std::copy(entries_.begin(), entries_.end(), entryOf.begin());
    entryOf.back() = holeEntry;
    const unsigned mayLeaveOut = hole >= 0 ? 0xFF : 0;
    unsigned highest = 0, different = 0;
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x, ++to) {
            const std::uint8_t entry = entryOf[std::min<PixelValue>(shown[x], 256)];
            // Changes are as irregular as grain, so no branch depends on one.
            const unsigned freedom = (entry ^ holeEntry) & (changed[x] - 1U) & mayLeaveOut;
            *to = {entry, static_cast<std::uint8_t>(entry ^ freedom)};
            different |= freedom;
            highest = std::max<unsigned>(highest, entry);
        }
    }
    cut.mayLeaveOut = different != 0;
    cut.entries = std::max(static_cast<int>(highest), hole) + 1;
    return cut;
}

} // namespace lumafold
