#include "tests/transitions/effect_checks.h"

#include <numbers>

#include "platform/portable_math.h"

namespace lumafold::test {
namespace {

/// Rows for columns.
OwnedDib Transposed(DibHandle picture) {
    const LockedDib from(picture);
    OwnedDib result(DibCreate(from->biHeight, from->biWidth, nullptr, 24));
    const LockedDib to(result.Get());
    for (std::int32_t y = 0; y < from->biHeight; ++y) {
        for (std::int32_t x = 0; x < from->biWidth; ++x) {
            DibSetPixel(to.Get(), y, x, DibGetPixel(from.Get(), x, y));
        }
    }
    return result;
}

/// The horizontal frame by its definition.
OwnedDib PlainBlind(DibHandle sourcePicture, DibHandle targetPicture, int p, bool shading) {
    const LockedDib source(sourcePicture), target(targetPicture);
    const int w = source->biWidth, h = source->biHeight, half = h / 2, r = half * p / 100;
    OwnedDib picture(DibCreate(w, h, nullptr, 24));
    const LockedDib frame(picture.Get());
    DibCopyRect(frame.Get(), 0, 0, source.Get(), 0, r, w, half - r);
    DibCopyRect(frame.Get(), 0, half + r, source.Get(), 0, half, w, half - r + 1);
    DibCopyRect(frame.Get(), 0, half - r, target.Get(), 0, 0, w, r);
    DibCopyRect(frame.Get(), 0, half, target.Get(), 0, h - r, w, r);
    for (int i = 0; shading && r > 1 && i < r; ++i) {
        const double t = PortableSin(static_cast<double>(r - i - 1) / r * 90 * std::numbers::pi / 180);
        const auto shade =
            static_cast<unsigned>(std::clamp(300 - static_cast<int>((100 - p) * 0.01 * t * 255), 0, 255));
        for (int x = 0; x < w; ++x) {
            for (const int y : {half - i, half + i}) {
                const PixelValue c = DibGetPixel(frame.Get(), x, y);
                DibSetPixel(
                    frame.Get(), x, y,
                    MakeColour(RedOf(c) * shade / 255, GreenOf(c) * shade / 255, BlueOf(c) * shade / 255));
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
            Rendered rows = BusyRun("Rollerblind (horizontal)", size);
            Rendered columns("Rollerblind (vertical)", Transposed(rows.source.Get()),
                             Transposed(rows.target.Get()));
            ASSERT_EQ(rows.result.Count(), 16);
            for (std::int32_t i = 1; i < 16; ++i) {
                SCOPED_TRACE(i);
                const OwnedDib plain =
                    PlainBlind(rows.source.Get(), rows.target.Get(), 7 * (i - 1), shading != 0);
                ExpectSamePicture(rows.result.Image(i), plain.Get());
                ExpectSamePicture(columns.result.Image(i), Transposed(plain.Get()).Get());
            }
        }
    }
}

// A white picture shows the shades themselves.
TEST(Rollerblind, ShadesByHand) {
    const SettingsGuard guard;
    pluginSettings.TransitionRollerblindStep = 20;
    const struct {
        int length, frame, line;
        unsigned level;
    } kExpected[] = {
        {10, 2, 4, 255},    {10, 2, 5, 255},                     // 20 %: the gap of one line is left alone
        {10, 3, 5, 144},    {10, 3, 4, 255},    {10, 3, 6, 255}, // 40 %: 0.6 sin 45 deg; the centre twice
        {480, 2, 209, 199}, {480, 2, 271, 199},                  // sin 30 deg lies a little below a half
        {480, 2, 208, 204}, {480, 2, 192, 255},                  // the gap's first line is never shaded
    };
    for (const auto& e : kExpected) {
        const OwnedDib tall(PlainPicture(1, e.length, 0xFFFFFF)), wide(PlainPicture(e.length, 1, 0xFFFFFF));
        EffectResult rows, columns;
        RunEffect(RowNamed("Rollerblind (horizontal)"), tall.Get(), tall.Get(), rows);
        RunEffect(RowNamed("Rollerblind (vertical)"), wide.Get(), wide.Get(), columns);
        const PixelValue level = MakeColour(e.level, e.level, e.level);
        EXPECT_EQ(PixelAt(rows.Image(e.frame), 0, e.line), level) << e.length << ' ' << e.line;
        EXPECT_EQ(PixelAt(columns.Image(e.frame), e.line, 0), level) << e.length << ' ' << e.line;
    }
}

} // namespace
} // namespace lumafold::test
