#include "colour/nearest.h"

namespace lumafold {
namespace {

constexpr std::size_t Entries(int count) { return static_cast<std::size_t>(std::clamp(count, 0, 256)); }

constexpr int kSide = static_cast<int>(NearestSearch::kBlockSide);

/// The entries that no earlier one equals; the others are never found.
struct DistinctEntries {
    std::size_t count = 0;
    std::uint8_t indices[256];
    std::uint8_t levels[3][256]; ///< red, green, blue of each

    DistinctEntries(const Palette& palette, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i) {
            const Rgb entry = palette[i];
            if (std::find(palette.begin(), palette.begin() + i, entry) != palette.begin() + i) continue;
            indices[count] = static_cast<std::uint8_t>(i);
            levels[0][count] = entry.red;
            levels[1][count] = entry.green;
            levels[2][count] = entry.blue;
            ++count;
        }
    }
};

/// How near to each entry a colour can be, and how far from it, seen along some of the channels.
struct Reach {
    std::int32_t near[256], far[256];
};

/// Along each channel for each of its slabs, one block thick: all of red's, then green's, then blue's.
void MeasureSlabs(const DistinctEntries& entries, Reach* slab) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (int from = 0; from < 256; from += kSide, ++slab) {
            const int to = from + kSide - 1;
            for (std::size_t i = 0; i < entries.count; ++i) {
                const int level = entries.levels[channel][i];
                const int near = std::max({from - level, level - to, 0});
                const int far = std::max(to - level, level - from);
                slab->near[i] = kChannelWeights[channel] * near * near;
                slab->far[i] = kChannelWeights[channel] * far * far;
            }
        }
    }
}

void Add(Reach& sum, const Reach& a, const Reach& b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sum.near[i] = a.near[i] + b.near[i];
    for (std::size_t i = 0; i < count; ++i)
        sum.far[i] = a.far[i] + b.far[i];
}

/// How much farther than `rival` an entry is from the colour of a block that suits it best. The difference of
/// two distances is linear in the colour, so that colour is a corner.
int LeastLag(const DistinctEntries& entries, std::size_t entry, std::size_t rival, const int (&from)[3]) {
    int lag = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int mine = entries.levels[channel][entry], other = entries.levels[channel][rival];
        const int corner = mine > other ? from[channel] + kSide - 1 : from[channel];
        lag += kChannelWeights[channel] * (mine - other) * (mine + other - 2 * corner);
    }
    return lag;
}

/// Writes the entries that can be nearest to some colour of a block, in palette order, and tells how many.
std::size_t ListCandidates(const DistinctEntries& entries, const Reach& block, const int (&from)[3],
                           std::uint8_t* list) {
    // Whatever the colour, one entry is this near; what is never that near cannot win.
    std::int32_t limit = INT32_MAX;
    for (std::size_t i = 0; i < entries.count; ++i)
        limit = std::min(limit, block.far[i]);
    std::uint8_t near[256];
    std::size_t nearCount = 0, rival = 0;
    for (std::size_t i = 0; i < entries.count; ++i) {
        if (block.far[i] == limit) rival = i;
        near[nearCount] = static_cast<std::uint8_t>(i);
        nearCount += block.near[i] <= limit ? 1 : 0;
    }
    std::size_t listed = 0;
    for (std::size_t i = 0; i < nearCount; ++i) {
        if (LeastLag(entries, near[i], rival, from) <= 0) list[listed++] = entries.indices[near[i]];
    }
    return listed;
}

} // namespace

int FindNearestColour(int red, int green, int blue, const Palette& palette, int count) {
    std::size_t best = 0;
    int bestDistance = kBeyondEveryDistance;
    for (std::size_t i = 0; i < Entries(count); ++i) {
        const int distance =
            ColourDistance(red - palette[i].red, green - palette[i].green, blue - palette[i].blue);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return static_cast<int>(best);
}

int FindExactColour(int red, int green, int blue, const Palette& palette, int count) {
    for (std::size_t i = 0; i < Entries(count); ++i) {
        if (palette[i].red == red && palette[i].green == green && palette[i].blue == blue)
            return static_cast<int>(i);
    }
    return -1;
}

bool NearestSearch::Build(const Palette& palette, int count) {
    const DistinctEntries entries(palette, Entries(count));
    Array<std::uint8_t> candidates(kBlocks * entries.count);
    Array<std::uint32_t> starts(kBlocks + 1);
    Array<Reach> slabs(3 * kBlocksPerAxis); // red's, green's, blue's
    if (!candidates || !starts || !slabs) return false;
    MeasureSlabs(entries, slabs.data());

    std::uint32_t filled = 0;
    Reach column, block;
    for (unsigned redGreen = 0; redGreen < kBlocksPerAxis * kBlocksPerAxis; ++redGreen) {
        const unsigned red = redGreen / kBlocksPerAxis, green = redGreen % kBlocksPerAxis;
        Add(column, slabs[red], slabs[kBlocksPerAxis + green], entries.count);
        for (unsigned blue = 0; blue < kBlocksPerAxis; ++blue) {
            Add(block, column, slabs[2 * kBlocksPerAxis + blue], entries.count);
            const int from[3] = {static_cast<int>(red * kBlockSide), static_cast<int>(green * kBlockSide),
                                 static_cast<int>(blue * kBlockSide)};
            filled +=
                static_cast<std::uint32_t>(ListCandidates(entries, block, from, candidates.data() + filled));
            starts[BlockOf(red, green, blue) + 1] = filled;
        }
    }
    palette_ = palette;
    candidates_ = std::move(candidates);
    starts_ = std::move(starts);
    return true;
}

Array<std::uint8_t> BuildLookupCache(const NearestSearch& search) {
    Array<std::uint8_t> cache(kCellCount);
    if (!cache) return cache;
    for (unsigned cell = 0; cell < kCellCount; ++cell) {
        const PixelValue colour = MakeColour((cell & 31) * 8, (cell >> 5 & 31) * 8, (cell >> 10 & 31) * 8);
        cache[cell] = static_cast<std::uint8_t>(search.Find(colour));
    }
    return cache;
}

ExactColours::ExactColours(const Palette& palette, int count) {
    for (std::size_t i = 0; i < Entries(count); ++i) {
        indices_.Add(ColourOf(palette[i]), static_cast<int>(i));
        const std::size_t cell = CellOf(palette[i]);
        occupied_[cell / 32] |= 1U << (cell % 32);
    }
}

} // namespace lumafold
