#include "colour/palettes.h"

#include <bit>
#include <span>

namespace lumafold {
namespace {

using Levels = std::span<const std::uint8_t>;

constexpr std::uint8_t kTwo[] = {0, 255};
constexpr std::uint8_t kFour[] = {0, 85, 170, 255};
constexpr std::uint8_t kSix[] = {0, 51, 102, 153, 204, 255};
constexpr std::uint8_t kSeven[] = {0, 43, 85, 128, 170, 213, 255};
// Steps of 36 with a longer last one, not rounded; the palette with gray has greens of its own, which are.
constexpr std::uint8_t kEight[] = {0, 36, 72, 108, 144, 180, 216, 255};
constexpr std::uint8_t kEightRounded[] = {0, 36, 73, 109, 146, 182, 219, 255};

constexpr Rgb kWindowsColours[] = {
    {0, 0, 0},     {128, 0, 0},     {0, 128, 0},     {128, 128, 0},   {0, 0, 128}, {128, 0, 128},
    {0, 128, 128}, {128, 128, 128}, {192, 192, 192}, {255, 0, 0},     {0, 255, 0}, {255, 255, 0},
    {0, 0, 255},   {255, 0, 255},   {0, 255, 255},   {255, 255, 255},
};

/// Every combination of levels makes a cube. The palettes without levels are filled by themselves.
struct FixedPalette {
    int colours;
    Levels red, green, blue;
};
constexpr FixedPalette kFixed[kFixedPaletteCount] = {
    {2, {}, {}, {}},
    {16, {}, {}, {}},
    {32, kFour, kFour, kTwo},
    {64, kFour, kFour, kFour},
    {128, kFour, kEight, kFour},
    {216, kSix, kSix, kSix},
    {256, kEight, kEight, kFour},
    {256, kSeven, kEightRounded, kFour},
    {256, {}, {}, {}},
};

/// Red varies slowest, blue fastest.
void FillCube(Palette& palette, const FixedPalette& cube) {
    std::size_t i = 0;
    for (const std::uint8_t r : cube.red) {
        for (const std::uint8_t g : cube.green) {
            for (const std::uint8_t b : cube.blue)
                palette[i++] = {r, g, b};
        }
    }
}

constexpr Rgb Gray(std::size_t level) {
    const auto byte = static_cast<std::uint8_t>(level);
    return {byte, byte, byte};
}

/// Moves the upper half of a cube of 224 colours up, to make room for 32 grays in its middle.
void InsertGrays(Palette& palette) {
    constexpr std::size_t kHalf = 112, kGrays = 32;
    std::copy_backward(palette.begin() + kHalf, palette.begin() + 2 * kHalf, palette.end());
    for (std::size_t i = 0; i < kGrays; ++i)
        palette[kHalf + i] = Gray(i * 255 / (kGrays - 1));
    // The ends stand off by one, so that no gray repeats the cube's black or white.
    palette[kHalf] = Gray(1);
    palette[kHalf + kGrays - 1] = Gray(254);
}

/// What a palette has beyond its cube, or instead of one.
void FinishPalette(Palette& palette, std::int32_t number) {
    if (number == 0) palette[1] = Gray(255);
    if (number == 1) std::copy(std::begin(kWindowsColours), std::end(kWindowsColours), palette.begin());
    if (number == 5) { // green varies slowest in the safe colours
        for (Rgb& colour : palette)
            std::swap(colour.red, colour.green);
    }
    if (number == 7) InsertGrays(palette);
    if (number == 8) {
        for (std::size_t i = 0; i < palette.size(); ++i)
            palette[i] = Gray(i);
    }
}

} // namespace

int BuildFixedPalette(Palette* palette, int* bits, std::int32_t number) {
    if (number < 0 || number >= kFixedPaletteCount) number = kDefaultFixedPalette;
    const FixedPalette& fixed = kFixed[number];
    if (bits != nullptr) *bits = PaletteBitsFor(fixed.colours);
    if (palette != nullptr) {
        *palette = {};
        FillCube(*palette, fixed);
        FinishPalette(*palette, number);
    }
    return fixed.colours;
}

int PaletteBitsFor(int colours) {
    return std::clamp(static_cast<int>(std::bit_width(static_cast<unsigned>(std::max(colours, 1) - 1))), 1,
                      8);
}

} // namespace lumafold
