#include "tests/transitions/effect_checks.h"
#include "transitions/shape_masks.h"

namespace lumafold::test {
namespace {

using Percents = std::vector<int>;
using Mask = decltype(&EllipseMask);

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

} // namespace
} // namespace lumafold::test
