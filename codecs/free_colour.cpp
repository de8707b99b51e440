#include "codecs/free_colour.h"

#include <algorithm>

namespace lumafold {
namespace {

constexpr PixelValue kStep = 0x010101, kColours = 0x1000000;

} // namespace

void ColourSet::Add(std::span<const PixelValue> pixels) {
    for (const PixelValue colour : pixels) {
        if (colour != kNoPixel) taken_[colour] = true;
    }
}

PixelValue ColourSet::Free() const {
    for (PixelValue i = 0; i < kColours; ++i) {
        const PixelValue colour = (kLikelyFreeColour + i * kStep) % kColours;
        if (!taken_[colour]) return colour;
    }
    return kNoPixel;
}

PixelValue FreeColour(std::span<const PixelValue> pixels) {
    // Pixels may have a great many colours: then each is looked at once.
    if (std::find(pixels.begin(), pixels.end(), kLikelyFreeColour) == pixels.end()) return kLikelyFreeColour;
    ColourSet taken;
    taken.Add(pixels);
    return taken.Free();
}

} // namespace lumafold
