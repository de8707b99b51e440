#include "tests/transitions/effect_checks.h"
#include "transitions/shape_masks.h"

namespace lumafold::test {
namespace {

using Percents = std::vector<int>;
using Mask = decltype(&EllipseMask);

TEST(ShapeMasks, ReachAsFarAsTheyShould) {
    // 60 x 40: the canvas is 120 x 80, its half diagonal 72.1, so the half-axes are 73 and 80 * 73 / 120
    // = 48. Half of them: 36 and 24 on the canvas, 18 and 12 in the picture; all: the corners stay covered.
    // The diamond's are a quarter of 120 and 80: 15 and 10.
    constexpr PixelValue kWhite = 0xFFFFFF;
    const struct {
        Mask mask;
        int percent;
        std::int32_t x, y;
        bool white;
    } kExpected[] = {
        {EllipseMask, 50, 12, 20, true}, {EllipseMask, 50, 47, 20, true},  {EllipseMask, 50, 30, 8, true},
        {EllipseMask, 50, 30, 7, false}, {EllipseMask, 50, 10, 20, false}, {EllipseMask, 50, 49, 20, false},
        {EllipseMask, 100, 0, 20, true}, {EllipseMask, 100, 0, 0, false},  {EllipseMask, 120, 0, 0, false},
        {DiamondMask, 25, 30, 20, true}, {DiamondMask, 25, 16, 20, true},  {DiamondMask, 25, 13, 20, false},
        {DiamondMask, 25, 30, 9, false}, {DiamondMask, 25, 22, 14, false}, // not the box's corner
    };
    for (const auto& e : kExpected) {
        const OwnedDib mask(e.mask(0, 60, 40, e.percent));
        EXPECT_EQ(PixelAt(mask.Get(), e.x, e.y), e.white ? kWhite : 0) << &e - kExpected;
    }
    EXPECT_EQ(EllipseMask(0, 0, 40, 50), 0U);
}

/// One picture over another through a soft mask; at 0 % only the other shows.
OwnedDib PlainIris(Mask shape, std::int32_t radius, int percent, const DibHeader* inside,
                   const DibHeader* outside) {
    if (percent == 0) return CopyOf(outside);
    const OwnedDib mask(shape(0, inside->biWidth, inside->biHeight, percent));
    const OwnedDib soft(DibGaussianBlur(mask.Get(), radius, 100));
    return OwnedDib(DibMaskBlend(inside, outside, LockedDib(soft.Get()).Get()));
}

TEST(Iris, EndsWhereEachShapeEnds) {
    const SettingsGuard guard;
    pluginSettings.TransitionIrisRadius = 20;
    struct Case {
        unsigned step;
        Percents ellipse, diamond;
    };
    for (const Case& c : {Case{30, {30, 60, 90, 120}, {30, 60, 90}},
                          {20, {20, 40, 60, 80, 100}, {20, 40, 60, 80}},
                          {100, {100}, {}},
                          {4000000000, {100}, {}}}) {
        pluginSettings.TransitionIrisStep = c.step;
        for (const bool round : {false, true}) {
            const char* name = round ? "Soft iris (ellipse)" : "Soft iris (diamond)";
            const Percents& percents = round ? c.ellipse : c.diamond;
            ASSERT_EQ(FrameCount(RowNamed(name), 33, 21), static_cast<int>(percents.size()) + 1) << c.step;
            ExpectFrames(name, {33, 21}, [&](int i, const DibHeader* from, const DibHeader* to) {
                return PlainIris(round ? EllipseMask : DiamondMask, 20,
                                 percents[static_cast<std::size_t>(i - 1)], to, from);
            });
        }
    }
}

TEST(Iris, SilentMovieClosesAndOpens) {
    const SettingsGuard guard;
    const OwnedDib flat = PlainPicture(33, 21, 0x123456);
    const LockedDib ground(flat.Get());
    pluginSettings.TransitionSilentMovieBackground = 0x123456;
    struct Case {
        unsigned step;
        int closing;
        Percents percents;
    };
    for (const Case& c : {Case{20, 5, {100, 80, 60, 40, 0, 20, 40, 60, 80, 100}},
                          {30, 4, {100, 70, 40, 0, 30, 60, 90, 120}},
                          {200, 1, {0, 200}}}) {
        pluginSettings.TransitionSilentMovieStep = c.step;
        ASSERT_EQ(FrameCount(RowNamed("Silent movie"), 33, 21), static_cast<int>(c.percents.size()) + 1);
        ExpectFrames("Silent movie", {33, 21}, [&](int i, const DibHeader* from, const DibHeader* to) {
            return PlainIris(EllipseMask, 35, c.percents[static_cast<std::size_t>(i - 1)],
                             i <= c.closing ? from : to, ground.Get());
        });
    }
}

TEST(Iris, StepZeroFailsAfterTheStill) {
    const SettingsGuard guard;
    pluginSettings.TransitionIrisStep = pluginSettings.TransitionSilentMovieStep = 0;
    const OwnedDib source = BusyPicture(7, 5, 1);
    for (const char* name : {"Soft iris (ellipse)", "Soft iris (diamond)", "Silent movie"}) {
        EffectResult result;
        RunEffect(RowNamed(name), source.Get(), source.Get(), result);
        EXPECT_EQ(result.returned, 0);
        EXPECT_EQ(result.Count(), 1);
    }
}

TEST(None, CopiesAnyDepthAsItsOnlyFrame) {
    for (const int bits : {1, 4, 8, 24}) {
        const OwnedDib source = NoisePicture(7, 5, bits, 1);
        EffectResult result;
        RunEffect(RowNamed("None"), source.Get(), source.Get(), result);
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
