#include "colour/remap.h"

#include <functional>

#include <gtest/gtest.h>

#include "tests/colour/definition.h"
#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

using test::BusyPicture;
using test::Definition;
using test::NoisePicture;
using test::PixelAt;

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

std::string Indices(DibHandle picture) {
    std::int32_t width = 0, height = 0;
    DibQuery(picture, &width, &height, nullptr, nullptr);
    std::string text;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            text += static_cast<char>('0' + PixelAt(picture, x, y));
    }
    return text;
}

OwnedDib GrayPicture(std::int32_t width, std::int32_t height, const std::vector<unsigned>& levels) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (int i = 0; i < width * height; ++i) {
        const unsigned level = levels[static_cast<std::size_t>(i)];
        DibSetPixel(dib.Get(), i % width, i / width, MakeColour(level, level, level));
    }
    return picture;
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
    std::uint32_t seed = 0;
    for (const auto& [palette, count] : palettes) {
        for (const int bits : {1, 2, 3, 4, 5, 7, 8}) {
            const Definition definition(palette, bits, count);
            Remapper remapper(palette, bits, count);
            for (const auto& [width, height] : sizes) {
                for (const int depth : {1, 4, 8, 24}) {
                    const OwnedDib picture = NoisePicture(width, height, depth, ++seed);
                    for (const std::uint32_t fast : {0U, 1U}) {
                        SCOPED_TRACE(testing::Message()
                                     << count << " entries, " << depth << " to " << bits << " bits, " << width
                                     << 'x' << height << ", fast " << fast);
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

TEST(Dithering, SpreadsByHandComputedShares) {
    const test::SettingsGuard guard;
    // 100 is black and gives 43 to the right; 143 is white and gives -49, but nothing to the left below; 51
    // is black. So the next row was given 31, -20 and 8: 131 is white and gives -55, 25 is black and gives
    // 10, 118 is black.
    const OwnedDib gray = GrayPicture(3, 2, {100, 100, 100, 100, 100, 100});
    for (const std::uint32_t fast : {0U, 1U}) {
        pluginSettings.FastRemap = fast;
        EXPECT_EQ(Indices(OwnedDib(DitherImage(gray.Get(), FixedPalette(0), 4, 2)).Get()), "010100");
    }
    // Chosen so that each share given by a plainer rule (to the left at x = 0 or 1, weighted before divided)
    // shows.
    const OwnedDib mixed = GrayPicture(3, 3, {80, 200, 0, 80, 80, 120, 100, 80, 80});
    pluginSettings.DitherBrightness = pluginSettings.DitherContrast = 0;
    EXPECT_EQ(Indices(OwnedDib(DitherImage(mixed.Get(), FixedPalette(0), 1, 2)).Get()), "010011100");
}

TEST(Dithering, LeavesAUniformColourOfThePaletteAlone) {
    const test::SettingsGuard guard;
    const Palette palette = MutedPalette();
    for (const std::uint32_t fast : {0U, 1U}) {
        pluginSettings.FastRemap = fast;
        for (const std::size_t entry : {0U, 77U, 198U}) {
            const Rgb c = palette[entry];
            const OwnedDib picture = test::PlainPicture(9, 8, MakeColour(c.red, c.green, c.blue));
            const OwnedDib dithered(DitherImage(picture.Get(), palette, 8, 200));
            const auto first = static_cast<char>('0' + entry / 2 * 2);
            EXPECT_EQ(Indices(dithered.Get()), std::string(72, first));
        }
    }
}

TEST(Reduction, TellsExactColoursFromTheirCells) {
    const test::SettingsGuard guard;
    // All of the first two in one cell, which the second is nearest to. White is missing: the fourth is
    // nearest to it, the third to its cell.
    Palette palette{};
    palette[0] = {7, 7, 7}, palette[1] = {1, 1, 1}, palette[2] = {244, 244, 244},
    palette[3] = {255, 255, 240};
    const OwnedDib dark = GrayPicture(1, 3, {7, 1, 6});
    const OwnedDib bits(DibCreate(2, 1, &palette, 1));
    DibSetPixel(LockedDib(bits.Get()).Get(), 1, 0, 1);
    for (const bool fast : {false, true}) {
        pluginSettings.FastRemap = fast ? 1 : 0;
        EXPECT_EQ(Indices(OwnedDib(DitherImage(dark.Get(), palette, 8, 4)).Get()), fast ? "011" : "010");
        EXPECT_EQ(Indices(OwnedDib(RemapImage(dark.Get(), palette, 8, 4)).Get()), "111");
        EXPECT_EQ(Indices(OwnedDib(RemapImage(bits.Get(), palette, 8, 4)).Get()), fast ? "12" : "13");
    }
}

TEST(Dithering, TakesLevelsOfAnySteepness) {
    const test::SettingsGuard guard;
    const OwnedDib picture = BusyPicture(61, 47, 4);
    const Definition definition(FixedPalette(0), 1, 2);
    for (const std::uint32_t contrast : {0U, 1U, 50U, 127U, 128U, 129U, 300U, 0x80000000U, 0xFFFFFFFFU}) {
        for (const std::uint32_t brightness : {0U, 20U, 50U, 0xFFFFFFFFU}) {
            SCOPED_TRACE(testing::Message() << "brightness " << brightness << ", contrast " << contrast);
            pluginSettings.DitherBrightness = brightness, pluginSettings.DitherContrast = contrast;
            const OwnedDib dithered(DitherImage(picture.Get(), FixedPalette(0), 1, 2));
            ExpectSameBlock(dithered.Get(), definition.Dither(picture.Get()).Get());
        }
    }
}

TEST(Reduction, SurvivesOddCountsAndRefusesOtherDepths) {
    const OwnedDib picture = BusyPicture(7, 5, 1);
    for (const int count : {-1, 0, 300}) {
        const Definition definition(FixedPalette(6), 8, std::clamp(count, 0, 256));
        ExpectSameBlock(OwnedDib(RemapImage(picture.Get(), FixedPalette(6), 8, count)).Get(),
                        definition.Remap(picture.Get()).Get());
        ExpectSameBlock(OwnedDib(DitherImage(picture.Get(), FixedPalette(6), 8, count)).Get(),
                        definition.Dither(picture.Get()).Get());
    }
    const OwnedDib deep(DibCreate(7, 5, nullptr, 32));
    EXPECT_EQ(RemapImage(deep.Get(), FixedPalette(6), 8, 256), 0U);
    EXPECT_EQ(DitherImage(deep.Get(), FixedPalette(6), 8, 256), 0U);
    EXPECT_EQ(RemapImage(0, FixedPalette(6), 8, 256), 0U);
    for (const int bits : {0, 9, 24})
        EXPECT_EQ(RemapImage(picture.Get(), FixedPalette(6), bits, 256), 0U);
}

TEST(Reduction, FailsCleanlyWhereverMemoryEnds) {
    const test::SettingsGuard guard;
    for (const int depth : {8, 24}) {
        const OwnedDib picture = NoisePicture(7, 5, depth, 3);
        for (const int bits : {1, 4, 8}) {
            for (const std::uint32_t fast : {0U, 1U}) {
                for (const auto reduce : {&Remapper::Remap, &Remapper::Dither}) {
                    pluginSettings.FastRemap = fast;
                    const auto blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
                    int failures = 0;
                    for (int n = 1; failures == n - 1; ++n) {
                        Remapper remapper(FixedPalette(6), bits, 256);
                        allocation_hooks::FailNth(n);
                        const OwnedDib result((remapper.*reduce)(picture.Get()));
                        const bool failed = allocation_hooks::HasFailed();
                        allocation_hooks::FailNth(0);
                        failures += failed ? 1 : 0;
                        EXPECT_EQ(!result, failed);
                        EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
                        // What failed once works again, and with the same result.
                        const OwnedDib again((remapper.*reduce)(picture.Get()));
                        const OwnedDib fresh((Remapper(FixedPalette(6), bits, 256).*reduce)(picture.Get()));
                        ExpectSameBlock(again.Get(), fresh.Get());
                    }
                    EXPECT_GE(failures, 2);
                    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
                }
            }
        }
    }
}

TEST(Reduction, IsTheSameOnEveryPlatform) {
    const test::SettingsGuard guard;
    const OwnedDib picture = BusyPicture(61, 47, 12);
    Checksum sum;
    for (const std::uint32_t fast : {0U, 1U}) {
        pluginSettings.FastRemap = fast;
        for (int number = 0; number < kFixedPaletteCount; ++number) {
            Palette palette;
            int bits = 0;
            BuildFixedPalette(&palette, &bits, number);
            for (const auto reduce : {RemapImage, DitherImage}) {
                const std::uint64_t one =
                    DibChecksum(OwnedDib(reduce(picture.Get(), palette, bits, 256)).Get());
                ASSERT_NE(one, 0U);
                sum.Add(&one, sizeof(one));
            }
        }
    }
    EXPECT_EQ(sum.Value(), 5755261924975459771U);
}

} // namespace
} // namespace lumafold
