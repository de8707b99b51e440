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

TEST(Searches, FindTheFirstOfTheNearestByWeight) {
    const Palette palette{{{10, 10, 10}, {10, 10, 10}, {12, 10, 10}, {9, 9, 9}, {10, 10, 13}}};
    const auto found = [&](int red, int green, int blue, int count) {
        return std::pair(FindNearestColour(red, green, blue, palette, count),
                         FindExactColour(red, green, blue, palette, count));
    };
    EXPECT_EQ(found(10, 10, 10, 400), std::pair(0, 0));
    EXPECT_EQ(found(11, 10, 10, 5), std::pair(0, -1));
    EXPECT_EQ(found(10, 10, 12, 5), std::pair(4, -1));
    EXPECT_EQ(found(9, 9, 9, 3), std::pair(0, -1));
    EXPECT_EQ(found(0, 0, 0, -3), std::pair(0, -1));
}

TEST(Searches, ByTablesAgreeOnEveryCellAndBeyond) {
    Random random(77);
    for (const auto& [palette, count] : PalettesToSearch()) {
        NearestSearch search;
        ASSERT_TRUE(search.Build(palette, count));
        const Array<std::uint8_t> cache = BuildLookupCache(search);
        const ExactColours exact(palette, count);
        int wrong = 0;
        const auto check = [&, &palette = palette, count = count](PixelValue colour) {
            const Rgb c = RgbOf(colour);
            const int nearest = FindNearestColour(c.red, c.green, c.blue, palette, count);
            wrong += search.Find(colour) != nearest;
            wrong += exact.Find(colour) != FindExactColour(c.red, c.green, c.blue, palette, count);
            return nearest;
        };
        for (unsigned cell = 0; cell < 32768; ++cell)
            wrong +=
                cache[cell] != check(MakeColour((cell & 31) * 8, (cell >> 5 & 31) * 8, (cell >> 10) * 8));
        for (int i = 0; i < 20000; ++i)
            check(random.Draw() >> 4 & 0xFFFFFF);
        for (const Rgb entry : palette)
            check(ColourOf(entry));
        EXPECT_EQ(wrong, 0) << "with " << count << " entries";
    }
}

} // namespace
} // namespace lumafold
