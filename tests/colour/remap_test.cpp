#include "colour/remap.h"

#include <optional>

#include <gtest/gtest.h>

#include "colour/palettes.h"
#include "tests/support/checksum.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

using test::NoisePicture;

Palette FixedPalette(int number) {
    Palette palette;
    BuildFixedPalette(&palette, nullptr, number);
    return palette;
}

/// Neither black nor white in the first 200 entries, and every colour of them twice.
Palette MutedPalette() {
    Palette palette{};
    Random random(9);
    for (std::size_t i = 0; i < 200; i += 2) {
        const auto level = [&] { return static_cast<std::uint8_t>(20 + random.Draw() % 210); };
        palette[i].red = level(), palette[i].green = level(), palette[i].blue = level();
        palette[i + 1] = palette[i];
    }
    return palette;
}

/// Sums of all results for each palette: remapped, dithered with every colour searched for, dithered fast.
TEST(Reduction, GivesTheSameEverywhere) {
    const struct {
        Palette palette;
        int count;
        std::uint64_t sums[3];
    } palettes[] = {{FixedPalette(6), 256, {0x6CE02D080DF8F32B, 0x80655294D3005FC2, 0xB74A9666F318B939}},
                    {FixedPalette(1), 256, {0xC54126BF4CE1866E, 0x306C685CAA6C79ED, 0x527D9BCFA230B4B0}},
                    {MutedPalette(), 200, {0xD0218246ACA027EE, 0x3F0643A2B939430A, 0x24301C46F07E7C02}},
                    {MutedPalette(), 5, {0xC1C0B047933AFEF4, 0xAA775AC8538FB0B9, 0xE4AA86504B724CF7}}};
    constexpr std::uint32_t kContrasts[] = {0, 1, 50, 127, 128, 129, 300, 0x80000000, 0xFFFFFFFF};
    constexpr std::uint32_t kBrightnesses[] = {0, 20, 50, 0xFFFFFFFF};
    std::uint32_t seed = 0;
    for (const auto& [palette, count, expected] : palettes) {
        Checksum sums[3];
        for (const int bits : {1, 2, 3, 4, 5, 7, 8}) {
            for (const auto& [width, height] :
                 {std::pair{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {2, 6}, {0, 4}}) {
                for (const int depth : {1, 4, 8, 24}) {
                    const OwnedDib picture = NoisePicture(width, height, depth, ++seed);
                    for (int kind = 0; kind < 3; ++kind) {
                        const RemapOptions options{kind == 0 ? Dithering::None : Dithering::Diffused,
                                                   kind == 2,
                                                   kBrightnesses[seed / 9 % std::size(kBrightnesses)],
                                                   kContrasts[seed % std::size(kContrasts)]};
                        const OwnedDib reduced = Remapper(palette, bits, count, options).Reduce(*picture);
                        ASSERT_TRUE(reduced);
                        if (kind == 0 && depth == 24 && width > 0 && bits % 7 == 1) {
                            const Rgb colour = RgbOf(DibGetPixel(*picture, 0, 0));
                            EXPECT_EQ(DibGetPixel(*reduced, 0, 0),
                                      static_cast<unsigned>(UnditheredIndex(colour, palette, bits, count)));
                        }
                        sums[kind].Add(&*reduced, DibRowsOffset(*reduced));
                        sums[kind].Add(*reduced);
                    }
                }
            }
        }
        for (int kind = 0; kind < 3; ++kind)
            EXPECT_EQ(sums[kind].Value(), expected[kind])
                << count << " entries, kind " << kind << std::hex << ": 0x" << sums[kind].Value();
    }
}

TEST(Reduction, SurvivesOddCountsAndRefusesOtherDepths) {
    const OwnedDib picture = NoisePicture(7, 5, 24, 1), deep = DibCreate(7, 5, nullptr, 32);
    const OwnedDib black = test::PlainPicture(7, 5, 0);
    for (const Dithering dithering : {Dithering::None, Dithering::Diffused}) {
        const RemapOptions options{dithering, true, 20, 20};
        const auto reduce = [&](int count) {
            return Remapper(FixedPalette(6), 8, count, options).Reduce(*picture);
        };
        for (const auto& [count, same] : {std::pair{-1, 0}, {300, 256}})
            EXPECT_EQ(DibChecksum(reduce(count).Get()), DibChecksum(reduce(same).Get())) << count;
        EXPECT_FALSE(Remapper(FixedPalette(6), 8, 256, options).Reduce(*deep));
        // The lowest level that is diffused lies above the threshold of a black picture.
        EXPECT_EQ(DibGetPixel(*Remapper(FixedPalette(6), 1, 2, options).Reduce(*black), 3, 2),
                  dithering == Dithering::None ? 0U : 1U);
        for (const int bits : {0, 9, 24})
            EXPECT_FALSE(Remapper(FixedPalette(6), bits, 256, options)) << bits;
    }
}

TEST(Reduction, FailsCleanlyWhereverMemoryEnds) {
    for (int kind = 0; kind < 24; ++kind) {
        const int bits = std::array{1, 4, 8}[static_cast<std::size_t>(kind % 3)];
        const RemapOptions options{kind / 3 % 2 != 0 ? Dithering::None : Dithering::Diffused, kind / 12 != 0,
                                   20, 20};
        const OwnedDib picture = NoisePicture(7, 5, kind / 6 % 2 != 0 ? 8 : 24, 3);
        const auto run = [&] {
            const Remapper remapper(FixedPalette(6), bits, 256, options);
            return remapper ? remapper.Reduce(*picture) : OwnedDib();
        };
        const auto check = [](const OwnedDib& result, bool missed) { EXPECT_EQ(!result, missed); };
        EXPECT_GE(test::FailEachAllocation(run, check), 2) << kind;
    }
}

} // namespace
} // namespace lumafold
