#include "colour/nearest.h"

#include <gtest/gtest.h>

#include <vector>

#include "colour/palettes.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

struct Search {
    Palette palette;
    int count;
};

/// Fixed palettes and random ones: crowded together, with many equal entries, nearly empty, empty.
std::vector<Search> PalettesToSearch() {
    std::vector<Search> all;
    for (const int number : {0, 1, 5, 6, 7, 8}) {
        Palette palette;
        BuildFixedPalette(&palette, nullptr, number);
        all.push_back({palette, 256});
    }
    Random random(5);
    constexpr std::array<int, 3> kKinds[] = {{0xFF, 0, 256}, {0x1F, 90, 256}, {0xC0, 0, 256}, {0xFF, 0, 17},
                                             {0xFF, 0, 1},   {0xFF, 0, 0},    {0xFF, 0, -3},  {0xFF, 0, 400}};
    for (const auto& [mask, base, count] : kKinds) {
        Search search{{}, count};
        for (Rgb& entry : search.palette) {
            for (std::uint8_t* level : {&entry.red, &entry.green, &entry.blue})
                *level = static_cast<std::uint8_t>((static_cast<int>(random.Draw() >> 9) & mask) + base);
        }
        all.push_back(search);
    }
    return all;
}

int PlainNearest(Rgb c, const Palette& palette, int count) {
    int best = 0, bestDistance = 1000000;
    for (int i = 0; i < count; ++i) {
        const Rgb entry = palette[static_cast<std::size_t>(i)];
        const int r = c.red - entry.red, g = c.green - entry.green, b = c.blue - entry.blue;
        const int distance = 3 * r * r + 4 * g * g + 2 * b * b;
        if (distance < bestDistance) bestDistance = distance, best = i;
    }
    return best;
}

int PlainExact(Rgb c, const Palette& palette, int count) {
    const auto end = palette.begin() + count, found = std::find(palette.begin(), end, c);
    return found == end ? -1 : static_cast<int>(found - palette.begin());
}

TEST(Searches, AgreeWithTheirDefinitionOnEveryCellAndBeyond) {
    Random random(77);
    for (const auto& [palette, count] : PalettesToSearch()) {
        const int real = std::clamp(count, 0, 256);
        NearestSearch search;
        ASSERT_TRUE(search.Build(palette, count));
        const Array<std::uint8_t> cache = BuildLookupCache(search);
        const ExactColours exact(palette, count);
        int wrong = 0;
        const auto check = [&, &palette = palette, count = count](PixelValue colour) {
            const Rgb c = RgbOf(colour);
            const int nearest = PlainNearest(c, palette, real), equal = PlainExact(c, palette, real);
            wrong += search.Find(colour) != nearest;
            wrong += FindNearestColour(c.red, c.green, c.blue, palette, count) != nearest;
            wrong += exact.Find(colour) != equal;
            wrong += FindExactColour(c.red, c.green, c.blue, palette, count) != equal;
            return nearest;
        };
        for (unsigned cell = 0; cell < 32768; ++cell) {
            wrong +=
                cache[cell] != check(MakeColour((cell & 31) * 8, (cell >> 5 & 31) * 8, (cell >> 10) * 8));
        }
        for (int i = 0; i < 20000; ++i)
            check(random.Draw() >> 4 & 0xFFFFFF);
        for (const Rgb entry : palette)
            check(ColourOf(entry));
        EXPECT_EQ(wrong, 0) << "with " << count << " entries";
    }
}

} // namespace
} // namespace lumafold
