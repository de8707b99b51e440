#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kSubmerge = 31;

OwnedDib PlainFrame(DibHandle picture, unsigned level) {
    const LockedDib from(picture);
    OwnedDib frame(DibCreate(from->biWidth, from->biHeight, nullptr, 24));
    const LockedDib to(frame.Get());
    for (std::int32_t y = 0; y < from->biHeight; ++y) {
        for (std::int32_t x = 0; x < from->biWidth; ++x) {
            const PixelValue v = DibGetPixel(from.Get(), x, y);
            const unsigned light = RedOf(v) * 30 / 100 + GreenOf(v) * 59 / 100 + BlueOf(v) * 11 / 100;
            DibSetPixel(to.Get(), x, y, light < level ? pluginSettings.TransitionSubmergeColor : v);
        }
    }
    return frame;
}

TEST(Submerge, SinksByMultiplesAndRisesFromTheTop) {
    const SettingsGuard guard;
    constexpr std::int32_t kSizes[][2] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
    pluginSettings.TransitionSubmergeStep = 50;
    for (const PixelValue colour : {0x946B41U, 0x7F0A0B0CU, kNoPixel}) {
        pluginSettings.TransitionSubmergeColor = colour;
        for (const auto& [width, height] : kSizes) {
            const OwnedDib source = BusyPicture(width, height, 5), target = BusyPicture(width, height, 6);
            EffectResult result;
            RunEffect(kSubmerge, source.Get(), target.Get(), result);
            ASSERT_EQ(result.Count(), 11);
            const unsigned kLevels[] = {0, 50, 100, 150, 200, 250, 205, 155, 105, 55, 5};
            for (std::int32_t i = 0; i < 11; ++i) {
                const OwnedDib expected = PlainFrame(i < 6 ? source.Get() : target.Get(), kLevels[i]);
                EXPECT_EQ(DibChecksum(result.Image(i)), DibChecksum(expected.Get()))
                    << width << "x" << height << ", " << i;
            }
        }
    }
}

TEST(Submerge, WhiteStaysAboveAndBlackBelow) {
    const SettingsGuard guard;
    const OwnedDib white = PlainPicture(2, 2, 0xFFFFFF), black = PlainPicture(2, 2, 0);
    EffectResult result;
    RunEffect(kSubmerge, white.Get(), black.Get(), result);
    ASSERT_EQ(result.Count(), 51);
    EXPECT_EQ(PixelAt(result.Image(25), 1, 1), 0xFFFFFFU); // level 250
    EXPECT_EQ(PixelAt(result.Image(26), 1, 1), 0x946B41U); // 245
    EXPECT_EQ(PixelAt(result.Image(50), 1, 1), 0x946B41U); // 5
    // (1, 1, 1) has three broken shares and is as dark as black; 254 is the lightest of all levels.
    pluginSettings.TransitionSubmergeStep = 1;
    const OwnedDib dark = PlainPicture(2, 2, 0x010101);
    EffectResult fine;
    RunEffect(kSubmerge, white.Get(), dark.Get(), fine);
    ASSERT_EQ(fine.Count(), 1 + 254 + 254);
    EXPECT_EQ(PixelAt(fine.Image(254), 0, 0), 0xFFFFFFU);
    EXPECT_EQ(PixelAt(fine.Image(508), 0, 0), 0x946B41U);
}

} // namespace
} // namespace lumafold::test
