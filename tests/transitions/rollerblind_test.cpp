#include "tests/transitions/effect_checks.h"

#include <numbers>

#include "platform/portable_math.h"

namespace lumafold::test {
namespace {

/// The horizontal frame by its definition, or the vertical one with x and y exchanged.
class PlainBlind {
public:
    PlainBlind(const BusyRun& run, bool rows)
        : source_(run.source.Get()), target_(run.target.Get()), rows_(rows),
          size_(rows ? source_->biHeight : source_->biWidth),
          other_(rows ? source_->biWidth : source_->biHeight) {}

    OwnedDib Frame(int p, bool shading) const {
        OwnedDib picture(DibCreate(source_->biWidth, source_->biHeight, nullptr, 24));
        const LockedDib frame(picture.Get());
        const int half = size_ / 2, r = half * p / 100;
        Copy(frame.Get(), 0, source_.Get(), r, half - r);
        Copy(frame.Get(), half + r, source_.Get(), half, half - r + 1);
        Copy(frame.Get(), half - r, target_.Get(), 0, r);
        Copy(frame.Get(), half, target_.Get(), size_ - r, r);
        for (int i = 0; shading && r > 1 && i < r; ++i) {
            const double t = PortableSin(static_cast<double>(r - i - 1) / r * 90 * std::numbers::pi / 180);
            const int v = static_cast<int>((100 - p) * 0.01 * t * 255);
            const unsigned shade = static_cast<unsigned>(std::min(std::max(300 - v, 0), 255));
            for (int at = 0; at < other_; ++at) {
                for (const int line : {half - i, half + i}) {
                    const PixelValue c = Get(frame.Get(), line, at);
                    Set(frame.Get(), line, at,
                        MakeColour(RedOf(c) * shade / 255, GreenOf(c) * shade / 255,
                                   BlueOf(c) * shade / 255));
                }
            }
        }
        return picture;
    }

private:
    PixelValue Get(const DibHeader* dib, int line, int at) const {
        return rows_ ? DibGetPixel(dib, at, line) : DibGetPixel(dib, line, at);
    }
    void Set(DibHeader* dib, int line, int at, PixelValue value) const {
        rows_ ? DibSetPixel(dib, at, line, value) : DibSetPixel(dib, line, at, value);
    }
    void Copy(DibHeader* frame, int to, const DibHeader* from, int line, int count) const {
        for (int i = 0; i < count; ++i) {
            for (int at = 0; at < other_; ++at) {
                Set(frame, to + i, at, Get(from, line + i, at));
            }
        }
    }

    LockedDib source_, target_;
    bool rows_;
    int size_, other_;
};

TEST(Rollerblind, IsItsDefinition) {
    const SettingsGuard guard;
    for (const bool rows : {true, false}) {
        for (const CanvasSize size : kOddSizes) {
            for (const std::uint32_t shading : {0U, 1U, 2U}) {
                pluginSettings.TransitionRollerblindStep = 7;
                pluginSettings.TransitionRollerblindShading = shading;
                BusyRun run(rows ? "Rollerblind (horizontal)" : "Rollerblind (vertical)", size);
                const PlainBlind plain(run, rows);
                ASSERT_EQ(run.result.Count(), 16);
                for (std::int32_t i = 1; i < 16; ++i) {
                    SCOPED_TRACE(i);
                    ExpectSamePicture(run.result.Image(i), plain.Frame(7 * (i - 1), shading != 0).Get());
                }
                ExpectSamePicture(run.result.Image(1), run.source.Get());
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
    for (const char* name : {"Rollerblind (horizontal)", "Rollerblind (vertical)"}) {
        ExpectFramesAsCounted(name, &PluginSettings::TransitionRollerblindStep,
                              {0, 1, 50, 99, 100, kMostNumber});
    }
}

} // namespace
} // namespace lumafold::test
