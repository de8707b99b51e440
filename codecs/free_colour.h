// A colour that nothing has, for holes in pictures of true colour.
#pragma once

#include <span>
#include <vector>

#include "image/dib.h"

namespace lumafold {

/// Black packs best: rows of nothing but holes are rows of zeros.
inline constexpr PixelValue kZeroColour = 0;
/// Hardly any picture has it.
inline constexpr PixelValue kLikelyFreeColour = 0xFF00FF;

/// Colours as 0x00BBGGRR; kNoPixel counts for none. 2 MB.
class ColourSet {
public:
    void Add(std::span<const PixelValue> pixels);
    bool Has(PixelValue colour) const { return taken_[colour]; }
    /// kNoPixel when all are taken.
    PixelValue Free() const;

private:
    std::vector<bool> taken_ = std::vector<bool>(std::size_t{1} << 24);
};

/// A colour that none of the pixels has, kNoPixel when all are taken.
PixelValue FreeColour(std::span<const PixelValue> pixels);

} // namespace lumafold
