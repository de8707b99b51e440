// Reducing frames to a palette: the nearest colour for each pixel, with or without error diffusion. The
// searches of colour/nearest.h define every index; what makes them fast never changes one.
#pragma once

#include "colour/nearest.h"
#include "image/dib.h"
#include "settings/settings.h"

namespace lumafold {

enum class Dithering { None, Diffused };

/// What of the settings decides an index.
struct RemapOptions {
    Dithering dithering;
    bool fast;                          ///< look diffused colours up in cells instead of searching for each
    std::uint32_t brightness, contrast; ///< of the level table for diffusion to one bit
};
RemapOptions RemapOptionsOf(const PluginSettings& settings);

/// The index that a true-colour pixel gets without diffusion: that of its 15-bit cell, or to one bit that of
/// its luminance. `bits` and `count` as for a Remapper, whose tables give the same.
int UnditheredIndex(Rgb colour, const Palette& palette, int bits, int count);

/// Reduces pictures of 1, 4, 8 or 24 bits to one palette. Once made it only reads, so that several threads
/// may share it.
class Remapper {
public:
    /// `bits` is the depth asked for (1 to 8; the pictures have the depth DibCreate makes of it), `count` the
    /// number of entries searched, 0 to 256. Check it before use: false when memory is short.
    Remapper(const Palette& palette, int bits, int count, const RemapOptions& options);
    explicit operator bool() const { return ready_; }

    /// A new picture of the source's size; empty for any other depth or when memory is short.
    OwnedDib Reduce(const DibHeader& picture) const;

private:
    using IndexMap = std::array<std::uint8_t, 256>;

    bool PrepareTables();
    bool SearchesEach() const { return options_.dithering == Dithering::Diffused && !options_.fast; }
    int FindExtreme(int level) const;
    IndexMap MapTable(const DibHeader& source) const;
    bool FillNearest(const DibHeader& source, DibHeader& target) const;
    bool FillDiffused(const DibHeader& source, DibHeader& target) const;

    const Palette palette_;
    const int bits_, count_;
    const RemapOptions options_;
    NearestSearch search_;      ///< where each colour is searched for
    Array<std::uint8_t> cache_; ///< elsewhere, one index for each 15-bit cell
    bool ready_;
};

} // namespace lumafold
