#include "colour/palettes.h"

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

struct PaletteShape {
    int bits, colours;
};
constexpr PaletteShape kShapes[kFixedPaletteCount] = {{1, 2},   {4, 16},  {5, 32},  {6, 64}, {7, 128},
                                                      {8, 216}, {8, 256}, {8, 256}, {8, 256}};

/// Every combination of levels: red varies slowest, blue fastest.
void FillCube(Palette& palette, Levels red, Levels green, Levels blue) {
    std::size_t i = 0;
    for (const std::uint8_t r : red) {
        for (const std::uint8_t g : green) {
            for (const std::uint8_t b : blue)
                palette[i++] = {r, g, b};
        }
    }
}

/// The safe colours: green varies slowest, then red, then blue.
void FillSafe(Palette& palette) {
    std::size_t i = 0;
    for (const std::uint8_t g : kSix) {
        for (const std::uint8_t r : kSix) {
            for (const std::uint8_t b : kSix)
                palette[i++] = {r, g, b};
        }
    }
}

/// A cube of 224 colours with 32 grays in its middle.
void FillCubeWithGray(Palette& palette) {
    constexpr std::size_t kHalf = 112, kGrays = 32;
    FillCube(palette, kSeven, kEightRounded, kFour);
    std::copy_backward(palette.begin() + kHalf, palette.begin() + 2 * kHalf, palette.end());
    for (std::size_t i = 0; i < kGrays; ++i) {
        // The ends stand off by one, so that no gray repeats the cube's black or white.
        const auto level = static_cast<std::uint8_t>(i == 0            ? 1
                                                     : i == kGrays - 1 ? 254
                                                                       : i * 255 / (kGrays - 1));
        palette[kHalf + i] = {level, level, level};
    }
}

void FillGrays(Palette& palette) {
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto level = static_cast<std::uint8_t>(i);
        palette[i] = {level, level, level};
    }
}

} // namespace

int BuildFixedPalette(Palette* palette, int* bits, std::int32_t number) {
    if (number < 0 || number >= kFixedPaletteCount) number = kDefaultFixedPalette;
    const PaletteShape shape = kShapes[number];
    if (bits != nullptr) *bits = shape.bits;
    if (palette == nullptr) return shape.colours;

    *palette = {};
    switch (number) {
    case 0:
        (*palette)[1] = {255, 255, 255};
        break;
    case 1:
        std::copy(std::begin(kWindowsColours), std::end(kWindowsColours), palette->begin());
        break;
    case 2:
        FillCube(*palette, kFour, kFour, kTwo);
        break;
    case 3:
        FillCube(*palette, kFour, kFour, kFour);
        break;
    case 4:
        FillCube(*palette, kFour, kEight, kFour);
        break;
    case 5:
        FillSafe(*palette);
        break;
    case 6:
        FillCube(*palette, kEight, kEight, kFour);
        break;
    case 7:
        FillCubeWithGray(*palette);
        break;
    default:
        FillGrays(*palette);
        break;
    }
    return shape.colours;
}

int PaletteBitsFor(int colours) {
    int bits = 1;
    while (bits < 8 && colours > 1 << bits)
        ++bits;
    return bits;
}

} // namespace lumafold
