#include "colour/quantizer.h"

#include <vector>

#include <gtest/gtest.h>

#include "hosts/common/thread_pool.h"
#include "tests/support/checksum.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"

namespace lumafold {
namespace {

using Colours = std::vector<Rgb>;
using Pictures = std::vector<OwnedDib>;

/// A 24-bit picture of the colours, row by row.
OwnedDib PictureOf(const Colours& colours, std::int32_t height = 1) {
    const auto width = static_cast<std::int32_t>(colours.size()) / height;
    return test::PictureOf(width, height, 24, [&](int x, int y) {
        return ColourOf(colours[static_cast<std::size_t>(y * width + x)]);
    });
}

/// The palette's own entries; the ones behind them must be zero.
Colours Compute(const Pictures& pictures, int most, const Runner& runner) {
    OwnedFrameList frames;
    for (const OwnedDib& picture : pictures)
        EXPECT_TRUE(FrameListAddImage(*frames, DibCopy(*picture), 1));
    Palette palette;
    palette.fill({1, 2, 3});
    int count = most;
    EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette, runner), PaletteResult::Made);
    const auto end = palette.begin() + count;
    EXPECT_TRUE(std::all_of(end, palette.end(), [](Rgb entry) { return entry == Rgb{}; }));
    return {palette.begin(), end};
}

/// Distinct colours, all over the cube.
Colours Distinct(int count) {
    Colours colours;
    for (unsigned i = 0; i < static_cast<unsigned>(count); ++i)
        colours.push_back(RgbOf(MakeColour(i * 7919 & 255, i * 7919 >> 3 & 255, i & 255)));
    return colours;
}

template <typename... Dibs>
Pictures Gather(Dibs... dibs) {
    Pictures pictures;
    (pictures.push_back(std::move(dibs)), ...);
    return pictures;
}

/// Sums of the palettes of all sets for each number of colours.
TEST(Quantizer, GivesTheSameEverywhere) {
    std::vector<Pictures> sets;
    // About as many colours as a list holds: once each; twice, from the top and over two frames; the last
    // one twice in a row.
    for (const int count : {1, 2, 3, 17, 254, 255, 256, 257, 300}) {
        const Colours listed = Distinct(count);
        Colours pixels = listed;
        sets.push_back(Gather(PictureOf(listed)));
        pixels.insert(pixels.end(), listed.rbegin(), listed.rend());
        sets.push_back(Gather(PictureOf(pixels, 2), PictureOf(listed)));
        pixels.resize(listed.size() + 1);
        sets.push_back(Gather(PictureOf(pixels)));
    }
    // Nodes with as much error as the one above them; then a colour that outweighs its neighbour.
    Colours equal = {{47, 47, 47}, {48, 48, 48}, {175, 175, 175}, {176, 176, 176}};
    Colours heavy = equal;
    equal.insert(equal.end(), {{47, 47, 175}, {47, 47, 175}, {48, 48, 176}, {48, 48, 176}});
    heavy.insert(heavy.end(), {{255, 255, 0}, {255, 255, 0}, {255, 255, 0}, {192, 192, 0}});
    for (const Colours& pixels : {equal, heavy})
        sets.push_back(Gather(PictureOf(pixels)));
    std::uint32_t seed = 0;
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}}) {
        seed += 10;
        sets.push_back(Gather(test::NoisePicture(width, height, 24, seed)));
        sets.push_back(Gather(
            test::BusyPicture(width, height, seed + 2), test::PlainPicture(width, height, 0x654321),
            test::NoisePicture(width, height, 24, seed + 3), test::BusyPicture(width, height, seed + 4)));
    }
    constexpr int kMost[] = {1, 2, 3, 16, 100, 255, 256, 257, 0, -1}; // from 256 on they mean the same
    constexpr std::uint64_t kSums[] = {0x7C77122AE6968AC5, 0x3AF0109F4DF3A732, 0x99B6F238649E763F,
                                       0x656DABE4C8BD2DE4, 0x6DB49664F9F84FFA, 0x78BC74FEF13E3212,
                                       0x840EE4DA8904232C};
    for (std::size_t i = 0; i < std::size(kMost); ++i) {
        Checksum sum;
        for (const Pictures& pictures : sets) {
            const Colours palette = Compute(pictures, kMost[i], Runner());
            EXPECT_EQ(Compute(pictures, kMost[i], ThreadPool(3)), palette);
            sum.Add(palette.data(), palette.size() * sizeof(Rgb));
        }
        EXPECT_EQ(sum.Value(), kSums[std::min<std::size_t>(i, 6)])
            << kMost[i] << std::hex << ": 0x" << sum.Value();
    }
}

TEST(Quantizer, RefusesWhatItCannotReadBehindFewColoursAndMany) {
    for (const std::int32_t width : {1, 900}) {
        for (const int depth : {0, 8, 32}) {
            OwnedFrameList frames;
            FrameRecord odd{};
            if (depth != 0) odd.image = DibCreate(3, 3, nullptr, depth).Release();
            ASSERT_TRUE(FrameListAddImage(*frames, test::NoisePicture(width, 1, 24, 1), 1) &&
                        FrameListAppend(*frames, odd));
            Palette palette;
            int count = 255;
            EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette, Runner()), PaletteResult::Failed);
            EXPECT_EQ(count, 255);
            EXPECT_EQ(palette, Palette{});
        }
    }
}

TEST(Quantizer, GoesOnInBlackWithoutATreeAndFailsWithoutNodes) {
    OwnedFrameList frames;
    ASSERT_TRUE(FrameListAddImage(*frames, test::BusyPicture(61, 47, 2), 1));
    Palette palette;
    int count = 0;
    const auto compute = [&] {
        count = 255;
        return ComputeOptimalPalette(*frames, count, palette, Runner());
    };
    auto expected = PaletteResult::NoTree; // of the first allocation
    const auto check = [&](PaletteResult result, bool missed) {
        if (!missed) return;
        EXPECT_EQ(result, std::exchange(expected, PaletteResult::Failed));
        EXPECT_EQ(count, 255);
        EXPECT_EQ(palette, Palette{});
    };
    EXPECT_GE(test::FailEachAllocation(compute, check), 2);
}

TEST(Quantizer, SortsFromDarkToLightAndKeepsEqualsInOrder) {
    // Each product is divided by itself: (3, 1, 9) has luminance 0, as have black and (0, 1, 0).
    Palette palette{{{255, 255, 255}, {3, 1, 9}, {0, 0, 0}, {0, 0, 255}, {0, 1, 0}, {93, 0, 0}, {9, 9, 9}}};
    SortByLuminance(palette, 6);
    const Colours sorted = {{3, 1, 9}, {0, 0, 0}, {0, 1, 0}, {93, 0, 0}, {0, 0, 255}, {255, 255, 255}};
    EXPECT_EQ(Colours(palette.begin(), palette.begin() + 6), sorted);
    EXPECT_EQ(palette[6], (Rgb{9, 9, 9}));
    SortByLuminance(palette, 0);
    EXPECT_EQ(palette[0], sorted[0]);
}

} // namespace
} // namespace lumafold
