#include "colour/remap.h"

#include <optional>

#include <gtest/gtest.h>

#include "tests/colour/definition.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

using test::BusyPicture;
using test::Definition;
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

void ExpectSameBlock(DibHandle result, DibHandle expected) {
    const LockedDib a(result), b(expected);
    ASSERT_TRUE(a && b);
    const std::size_t bytes = DibRowsOffset(*b) + b->biSizeImage;
    ASSERT_EQ(DibRowsOffset(*a) + a->biSizeImage, bytes);
    EXPECT_EQ(std::memcmp(a.Get(), b.Get(), bytes), 0);
}

TEST(Reduction, IsWhatTheAccessorsDefine) {
    const test::SettingsGuard guard;
    const struct {
        Palette palette;
        int count;
    } palettes[] = {
        {FixedPalette(6), 256}, {FixedPalette(1), 256}, {MutedPalette(), 200}, {MutedPalette(), 5}};
    const std::pair<int, int> sizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {2, 6}, {0, 4}};
    constexpr std::uint32_t kContrasts[] = {0, 1, 50, 127, 128, 129, 300, 0x80000000, 0xFFFFFFFF};
    constexpr std::uint32_t kBrightnesses[] = {0, 20, 50, 0xFFFFFFFF};
    std::uint32_t seed = 0;
    for (const auto& [palette, count] : palettes) {
        for (const int bits : {1, 2, 3, 4, 5, 7, 8}) {
            const Definition definition(palette, bits, count);
            Remapper remapper(palette, bits, count);
            for (const auto& [width, height] : sizes) {
                for (const int depth : {1, 4, 8, 24}) {
                    const OwnedDib picture = NoisePicture(width, height, depth, ++seed);
                    pluginSettings.DitherContrast = kContrasts[seed % std::size(kContrasts)];
                    pluginSettings.DitherBrightness = kBrightnesses[seed / 9 % std::size(kBrightnesses)];
                    for (const std::uint32_t fast : {0U, 1U}) {
                        SCOPED_TRACE(testing::Message()
                                     << count << " entries, " << depth << " to " << bits << " bits, " << width
                                     << 'x' << height << ", fast " << fast << ", picture " << seed);
                        pluginSettings.FastRemap = fast;
                        const OwnedDib remapped(remapper.Remap(picture.Get()));
                        ExpectSameBlock(remapped.Get(), definition.Remap(picture.Get()).Get());
                        if (width == 0) continue;
                        const OwnedDib dithered(remapper.Dither(picture.Get()));
                        ExpectSameBlock(dithered.Get(), definition.Dither(picture.Get()).Get());
                    }
                }
            }
        }
    }
}

TEST(Reduction, SurvivesOddCountsAndRefusesOtherDepths) {
    const OwnedDib picture = BusyPicture(7, 5, 1), deep(DibCreate(7, 5, nullptr, 32));
    for (const auto& [reduce, define] :
         {std::pair{&RemapImage, &Definition::Remap}, {&DitherImage, &Definition::Dither}}) {
        for (const int count : {-1, 0, 300}) {
            const Definition definition(FixedPalette(6), 8, std::clamp(count, 0, 256));
            ExpectSameBlock(OwnedDib(reduce(picture.Get(), FixedPalette(6), 8, count)).Get(),
                            (definition.*define)(picture.Get()).Get());
        }
        EXPECT_EQ(reduce(deep.Get(), FixedPalette(6), 8, 256), 0U);
        EXPECT_EQ(reduce(0, FixedPalette(6), 8, 256), 0U);
        for (const int bits : {0, 9, 24})
            EXPECT_EQ(reduce(picture.Get(), FixedPalette(6), bits, 256), 0U);
    }
}

TEST(Reduction, FailsCleanlyWhereverMemoryEnds) {
    const test::SettingsGuard guard;
    for (int kind = 0; kind < 24; ++kind) {
        const int bits = std::array{1, 4, 8}[static_cast<std::size_t>(kind % 3)];
        const auto reduce = kind / 3 % 2 != 0 ? &Remapper::Remap : &Remapper::Dither;
        const OwnedDib picture = NoisePicture(7, 5, kind / 6 % 2 != 0 ? 8 : 24, 3);
        pluginSettings.FastRemap = kind / 12 != 0 ? 1 : 0;
        const OwnedDib fresh((Remapper(FixedPalette(6), bits, 256).*reduce)(picture.Get()));
        std::optional<Remapper> remapper;
        const auto run = [&] {
            remapper.emplace(FixedPalette(6), bits, 256);
            return OwnedDib((*remapper.*reduce)(picture.Get()));
        };
        const auto check = [&](const OwnedDib& result, bool missed) {
            EXPECT_EQ(!result, missed);
            // What failed once works again, and with the same result.
            ExpectSameBlock(OwnedDib((*remapper.*reduce)(picture.Get())).Get(), fresh.Get());
            remapper.reset();
        };
        EXPECT_GE(test::FailEachAllocation(run, check), 2) << kind;
    }
}

} // namespace
} // namespace lumafold
