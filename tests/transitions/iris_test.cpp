#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/compositing.h"
#include "transitions/shape_masks.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14, kSilentMovie = 21, kDiamond = 22, kEllipse = 23;
constexpr PixelValue kWhite = 0xFFFFFF;

/// Columns from the first to the last white pixel of a row, grey edges left out.
std::pair<std::int32_t, std::int32_t> WhiteSpan(DibHandle mask, std::int32_t width, std::int32_t y) {
    std::int32_t first = width, last = -1;
    for (std::int32_t x = 0; x < width; ++x) {
        if (PixelAt(mask, x, y) != kWhite) continue;
        first = std::min(first, x);
        last = x;
    }
    return {first, last};
}

TEST(ShapeMasks, ReachAsFarAsTheyShould) {
    // 60 x 40: the canvas is 120 x 80, its half diagonal 72.1, so the half-axes are 73 and 80 * 73 / 120
    // = 48.
    const OwnedDib half(EllipseMask(0, 60, 40, 50)); // 36 and 24 on the canvas: 18 and 12
    EXPECT_EQ(WhiteSpan(half.Get(), 60, 20), std::pair(12, 47));
    EXPECT_EQ(PixelAt(half.Get(), 30, 8), kWhite);
    EXPECT_EQ(PixelAt(half.Get(), 30, 7), 0U);
    const OwnedDib full(EllipseMask(0, 60, 40, 100)), beyond(EllipseMask(0, 60, 40, 120));
    EXPECT_EQ(PixelAt(full.Get(), 0, 20), kWhite);
    EXPECT_EQ(PixelAt(full.Get(), 0, 0), 0U); // the corners stay covered
    EXPECT_EQ(DibChecksum(full.Get()), DibChecksum(beyond.Get()));

    const OwnedDib diamond(DiamondMask(0, 60, 40, 25)); // a quarter of 120 and 80: 15 and 10 in the picture
    EXPECT_EQ(PixelAt(diamond.Get(), 30, 20), kWhite);
    EXPECT_EQ(PixelAt(diamond.Get(), 30 - 14, 20), kWhite);
    EXPECT_EQ(PixelAt(diamond.Get(), 30 - 17, 20), 0U);
    EXPECT_EQ(PixelAt(diamond.Get(), 30, 20 - 11), 0U);
    EXPECT_EQ(PixelAt(diamond.Get(), 22, 14), 0U); // not the box's corner
    // Edges alone are grey.
    int grey = 0;
    for (std::int32_t x = 0; x < 60; ++x) {
        const PixelValue v = PixelAt(diamond.Get(), x, 20);
        if (v != 0 && v != kWhite) ++grey;
    }
    EXPECT_LE(grey, 4);
    EXPECT_EQ(EllipseMask(0, 0, 40, 50), 0U);
}

/// The frames of an effect from the percentages it should show, in order; 0 is the flat background.
struct Expected {
    DibHandle (*mask)(WindowHandle, std::int32_t, std::int32_t, std::int64_t);
    std::int32_t radius;
    DibHandle inside, outside;
    std::vector<int> percents;
};
void ExpectFrames(EffectResult& result, DibHandle still, const std::vector<Expected>& parts) {
    std::int32_t frame = 0;
    EXPECT_EQ(result.returned, 1);
    EXPECT_EQ(DibChecksum(result.Image(0)), DibChecksum(still));
    EXPECT_EQ(result.Delay(0), kTestPause);
    for (const Expected& part : parts) {
        for (const int percent : part.percents) {
            SCOPED_TRACE(testing::Message() << percent << " %");
            OwnedDib expected(percent == 0 ? GlobalDuplicate(part.outside) : 0);
            if (percent != 0) {
                const OwnedDib mask(part.mask(0, 33, 21, percent));
                const OwnedDib soft(DibGaussianBlur(mask.Get(), part.radius, 100));
                const LockedDib inside(part.inside), outside(part.outside), weights(soft.Get());
                expected = OwnedDib(DibMaskBlend(inside.Get(), outside.Get(), weights.Get()));
            }
            ++frame;
            EXPECT_EQ(DibChecksum(result.Image(frame)), DibChecksum(expected.Get()));
            EXPECT_EQ(result.Delay(frame), kTestDelay);
        }
    }
    EXPECT_EQ(result.Count(), frame + 1);
}

TEST(Iris, EndsWhereEachShapeEnds) {
    SettingsGuard guard;
    const OwnedDib source = BusyPicture(33, 21, 1), target = BusyPicture(33, 21, 2);
    pluginSettings.TransitionIrisRadius = 20;
    for (const auto& [step, ellipse, diamond] :
         {std::tuple<unsigned, std::vector<int>, std::vector<int>>{30, {30, 60, 90, 120}, {30, 60, 90}},
          {20, {20, 40, 60, 80, 100}, {20, 40, 60, 80}},
          {100, {100}, {}},
          {4000000000, {100}, {}}}) {
        SCOPED_TRACE(step);
        pluginSettings.TransitionIrisStep = step;
        EffectResult opened, diamondOpened;
        RunEffect(kEllipse, source.Get(), target.Get(), opened);
        ExpectFrames(opened, source.Get(), {{EllipseMask, 20, target.Get(), source.Get(), ellipse}});
        RunEffect(kDiamond, source.Get(), target.Get(), diamondOpened);
        ExpectFrames(diamondOpened, source.Get(), {{DiamondMask, 20, target.Get(), source.Get(), diamond}});
        EXPECT_EQ(FrameCount(kEllipse, 33, 21), opened.Count());
        EXPECT_EQ(FrameCount(kDiamond, 33, 21), diamondOpened.Count());
    }
}

TEST(Iris, SilentMovieClosesAndOpens) {
    SettingsGuard guard;
    const OwnedDib source = BusyPicture(33, 21, 1), target = BusyPicture(33, 21, 2);
    const OwnedDib flat = PlainPicture(33, 21, 0x123456);
    pluginSettings.TransitionSilentMovieBackground = 0x123456;
    for (const auto& [step, closing, opening] : {std::tuple<unsigned, std::vector<int>, std::vector<int>>{
                                                     20, {100, 80, 60, 40, 0}, {20, 40, 60, 80, 100}},
                                                 {30, {100, 70, 40, 0}, {30, 60, 90, 120}},
                                                 {200, {0}, {200}}}) {
        SCOPED_TRACE(step);
        pluginSettings.TransitionSilentMovieStep = step;
        EffectResult result;
        RunEffect(kSilentMovie, source.Get(), target.Get(), result);
        ExpectFrames(result, source.Get(),
                     {{EllipseMask, 35, source.Get(), flat.Get(), closing},
                      {EllipseMask, 35, target.Get(), flat.Get(), opening}});
        EXPECT_EQ(FrameCount(kSilentMovie, 33, 21), result.Count());
    }
}

TEST(Iris, StepZeroFailsAfterTheStill) {
    SettingsGuard guard;
    pluginSettings.TransitionIrisStep = pluginSettings.TransitionSilentMovieStep = 0;
    const OwnedDib source = BusyPicture(7, 5, 1);
    for (const int row : {kEllipse, kDiamond, kSilentMovie}) {
        EffectResult result;
        RunEffect(row, source.Get(), source.Get(), result);
        EXPECT_EQ(result.returned, 0);
        EXPECT_EQ(result.Count(), 1);
        EXPECT_EQ(FrameCount(row, 7, 5), 0);
    }
}

TEST(None, CopiesAnyDepthAsItsOnlyFrame) {
    for (const int bits : {1, 4, 8, 24}) {
        const OwnedDib source = NoisePicture(7, 5, bits, 1);
        EffectResult result;
        RunEffect(kNone, source.Get(), source.Get(), result);
        ASSERT_EQ(result.Count(), 1);
        EXPECT_EQ(result.Delay(0), kTestPause);
        EXPECT_EQ(DibChecksum(result.Image(0)), DibChecksum(source.Get()));
        Palette before, after;
        DibQuery(source.Get(), nullptr, nullptr, nullptr, &before);
        DibQuery(result.Image(0), nullptr, nullptr, nullptr, &after);
        EXPECT_EQ(before, after);
    }
}

} // namespace
} // namespace lumafold::test
