#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

/// Rows for columns.
OwnedDib Transposed(const DibHeader* from) {
    return Picture(from->biHeight, from->biWidth, [=](int x, int y) { return DibGetPixel(from, y, x); });
}

/// The horizontal frame by its definition.
OwnedDib PlainBlind(const DibHeader* source, const DibHeader* target, int p, bool shading) {
    const int w = source->biWidth, h = source->biHeight, half = h / 2, r = half * p / 100;
    OwnedDib picture(DibCreate(w, h, nullptr, 24));
    const LockedDib frame(picture.Get());
    DibCopyRect(*frame, 0, 0, source, 0, r, w, half - r);
    DibCopyRect(*frame, 0, half + r, source, 0, half, w, half - r + 1);
    DibCopyRect(*frame, 0, half - r, target, 0, 0, w, r);
    DibCopyRect(*frame, 0, half, target, 0, h - r, w, r);
    for (int i = 0; shading && r > 1 && i < r; ++i) {
        const double t = PortableSin(static_cast<double>(r - i - 1) / r * 90 * kPi / 180);
        const auto shade =
            static_cast<unsigned>(std::clamp(300 - static_cast<int>((100 - p) * 0.01 * t * 255), 0, 255));
        for (int x = 0; x < w; ++x) {
            for (const int y : {half - i, half + i}) {
                DibSetPixel(*frame, x, y, PlainMix(0, DibGetPixel(*frame, x, y), shade));
            }
        }
    }
    return picture;
}

TEST(Rollerblind, IsItsDefinition) {
    const SettingsGuard guard;
    pluginSettings.TransitionRollerblindStep = 7;
    for (const CanvasSize size : kOddSizes) {
        for (const std::uint32_t shading : {0U, 1U, 2U}) {
            pluginSettings.TransitionRollerblindShading = shading;
            EXPECT_EQ(FrameCount(RowNamed("Rollerblind (vertical)"), size.width, size.height), 16);
            ExpectFrames("Rollerblind (horizontal)", size,
                         [&](int i, const DibHeader* from, const DibHeader* to) {
                             return PlainBlind(from, to, 7 * (i - 1), shading != 0);
                         });
            ExpectFrames(
                "Rollerblind (vertical)", size, [&](int i, const DibHeader* from, const DibHeader* to) {
                    const OwnedDib s = Transposed(from), t = Transposed(to);
                    const LockedDib source(s.Get()), target(t.Get());
                    const OwnedDib plain = PlainBlind(source.Get(), target.Get(), 7 * (i - 1), shading != 0);
                    return Transposed(LockedDib(plain.Get()).Get());
                });
        }
    }
}

} // namespace
} // namespace lumafold::test
