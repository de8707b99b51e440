// Finding a colour in a palette: the two searches that define every index, and tables that give the same
// answers to many questions about one palette.
#pragma once

#include "image/dib_format.h"
#include "platform/allocation.h"

namespace lumafold {

/// How much each channel counts: red, green, blue.
inline constexpr int kChannelWeights[3] = {3, 4, 2};
constexpr int ColourDistance(int red, int green, int blue) {
    return kChannelWeights[0] * red * red + kChannelWeights[1] * green * green +
           kChannelWeights[2] * blue * blue;
}
inline constexpr int kBeyondEveryDistance = 1000000;

/// The first equal entry, else the first of the nearest by ColourDistance; 0 when count is 0.
/// Channels are 0 to 255; of a count beyond 256 only 256 entries exist.
int FindNearestColour(int red, int green, int blue, const Palette& palette, int count);
/// The first equal entry, or -1.
int FindExactColour(int red, int green, int blue, const Palette& palette, int count);

/// The 15-bit cell of a colour: five bits a channel, red lowest. A cell stands for its darkest
/// colour.
inline constexpr std::size_t kCellCount = 32768;
constexpr std::size_t CellOf(Rgb colour) {
    return colour.red >> 3 | (colour.green & 0xF8U) << 2 | (colour.blue & 0xF8U) << 7;
}

/// FindNearestColour for one palette, by looking only at the entries that can win near the colour asked for.
class NearestSearch {
public:
    /// False when memory is short; the search is then as empty as before.
    bool Build(const Palette& palette, int count);

    int Find(PixelValue colour) const {
        const unsigned red = RedOf(colour), green = GreenOf(colour), blue = BlueOf(colour);
        const std::size_t block = BlockOf(red / kBlockSide, green / kBlockSide, blue / kBlockSide);
        // Distance above, index below: the smallest key is the nearest entry, and the first of equals.
        std::uint32_t best = kNothingFound;
        for (std::uint32_t i = starts_[block]; i < starts_[block + 1]; ++i) {
            const unsigned index = candidates_[i];
            const Rgb entry = palette_[index];
            const auto distance = static_cast<std::uint32_t>(
                ColourDistance(static_cast<int>(red - entry.red), static_cast<int>(green - entry.green),
                               static_cast<int>(blue - entry.blue)));
            best = std::min(best, distance << 8 | index);
        }
        return static_cast<int>(best & 0xFF);
    }

    /// Colours are told apart in cubes of so many levels a channel.
    static constexpr unsigned kBlockSide = 16;

private:
    static constexpr unsigned kBlocksPerAxis = 256 / kBlockSide;
    static constexpr std::size_t kBlocks = kBlocksPerAxis * kBlocksPerAxis * kBlocksPerAxis;
    static constexpr std::uint32_t kNothingFound = std::uint32_t{kBeyondEveryDistance} << 8;

    static constexpr std::size_t BlockOf(unsigned red, unsigned green, unsigned blue) {
        return (red * kBlocksPerAxis + green) * kBlocksPerAxis + blue;
    }

    Palette palette_{};
    Array<std::uint8_t>
        candidates_; ///< the entries that can win in a block, in palette order, block after block
    Array<std::uint32_t> starts_; ///< where each block's candidates begin, and behind the last one the end
};

/// The nearest entry of each cell's colour; empty when memory is short.
Array<std::uint8_t> BuildLookupCache(const NearestSearch& search);

/// Up to 256 different colours, each with a number. Needs no memory of its own.
class NumberedColours {
public:
    /// The number the colour has, or -1.
    int Find(PixelValue colour) const { return slots_[SlotOf(colour)].number; }
    /// Gives the colour a number, from 0 on, unless it has one. The number it has.
    int Add(PixelValue colour, int number) {
        Slot& slot = slots_[SlotOf(colour)];
        if (slot.number < 0) slot = {colour, number};
        return slot.number;
    }

private:
    struct Slot {
        PixelValue colour = 0;
        std::int32_t number = -1;
    };

    /// The colour's slot, or the free one where it belongs. Most slots stay free, so one ends every walk.
    std::size_t SlotOf(PixelValue colour) const {
        std::size_t at = (colour * 0x9E3779B1U) >> 22; // of 1024
        while (slots_[at].number >= 0 && slots_[at].colour != colour)
            at = (at + 1) % slots_.size();
        return at;
    }

    std::array<Slot, 1024> slots_;
};

/// FindExactColour for one palette. Needs no memory of its own.
class ExactColours {
public:
    ExactColours(const Palette& palette, int count);

    int Find(PixelValue colour) const {
        // Few cells hold an entry at all, so this first question is nearly always the last.
        const std::size_t cell = CellOf(RgbOf(colour));
        if ((occupied_[cell / 32] >> (cell % 32) & 1) == 0) return -1;
        return indices_.Find(colour);
    }

private:
    std::array<std::uint32_t, kCellCount / 32> occupied_{};
    NumberedColours indices_;
};

} // namespace lumafold
