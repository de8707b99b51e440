#include <gtest/gtest.h>

#include "codecs/resize.h"
#include "tests/support/checksum.h"
#include "tests/support/colours.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Kind = SizeRequest::Kind;
constexpr std::uint64_t kMany = 1 << 24;

TEST(Resize, GivesTheSizeThatWasAskedFor) {
    struct Case {
        SizeRequest request;
        PictureSize from, to;
    };
    const Case cases[] = {
        {{}, {40, 30}, {40, 30}},
        {{Kind::Exact, {20, 20}}, {40, 30}, {20, 20}},
        {{Kind::AtMost, {20, 20}}, {40, 30}, {20, 15}},
        {{Kind::AtMost, {20, 20}}, {30, 40}, {15, 20}},
        {{Kind::AtMost, {50, 31}}, {40, 30}, {40, 30}},
        {{Kind::AtMost, {100, 100}}, {5000, 3}, {100, 1}},
        {{Kind::Scale, {}, Fit::Contain, 50}, {41, 30}, {21, 15}},
        {{Kind::Scale, {}, Fit::Contain, 0.001}, {40, 30}, {1, 1}},
        // In several steps: the resampler's own buffer for one would have more than 2 GB.
        {{Kind::Exact, {kLargestSide, 1}, Fit::Stretch}, {kLargestSide, 3000}, {kLargestSide, 1}},
    };
    for (const Case& one : cases) {
        const Palette palette{Rgb{12, 34, 56}};
        const DecodedPicture got =
            Resized(DibCreate(one.from.width, one.from.height, &palette, 8), one.request, kMany);
        ASSERT_EQ(got.error, "");
        const OwnedDib& dib = got.picture;
        EXPECT_EQ((PictureSize{dib->biWidth, dib->biHeight}), one.to);
        EXPECT_EQ(dib->biBitCount, one.from == one.to ? 8 : 24);
        EXPECT_EQ(ColourAt(*dib, one.to.width / 2, one.to.height / 2), palette[0]);
    }
    const SizeRequest huge{Kind::Scale, {}, Fit::Contain, 1e300}, large{Kind::Exact, {100, 100}};
    for (const SizeRequest& request : {huge, large})
        EXPECT_NE(Resized(PlainPicture(4, 4, 0), request, 9999).error.find("too many"), std::string::npos);
}

/// Quarters along a diagonal: 0 at the top left, 3 at the bottom right; or kMatte.
char QuarterAt(const DecodedPicture& picture, int x, int y) {
    const PixelValue value = DibGetPixel(*picture.picture, x, y);
    return value == 0xFFFFFF                   ? 'm'
           : value % 80 < 6 || value % 80 > 74 ? static_cast<char>('0' + (value + 6) / 80)
                                               : '?';
}

TEST(Resize, FitsInCutsOrStretches) {
    const auto quarters = [](Fit fit, PictureSize to, PictureSize first = {16, 8}) {
        OwnedDib picture = PictureOf(32, 16, 24, [=](int x, int y) {
            return static_cast<PixelValue>((y < first.height ? 0 : 160) + (x < first.width ? 0 : 80));
        });
        const DecodedPicture got = Resized(std::move(picture), {Kind::Exact, to, fit, 100, 0xFFFFFF}, kMany);
        std::string seen;
        for (const int y : {0, to.height / 4, to.height - to.height / 4 - 1, to.height - 1}) {
            for (const int x : {0, to.width / 4, to.width - to.width / 4 - 1, to.width - 1})
                seen += QuarterAt(got, x, y);
        }
        return seen;
    };
    EXPECT_EQ(quarters(Fit::Contain, {16, 16}), "mmmm00112233mmmm");
    EXPECT_EQ(quarters(Fit::Contain, {64, 16}), "m01mm01mm23mm23m");
    EXPECT_EQ(quarters(Fit::Cover, {16, 16}), "0011001122332233");
    EXPECT_EQ(quarters(Fit::Cover, {16, 16}, {6, 8}), "1111111133333333");
    EXPECT_EQ(quarters(Fit::Cover, {64, 16}, {16, 2}), "2233223322332233");
    EXPECT_EQ(quarters(Fit::Stretch, {16, 16}), "0011001122332233");
}

TEST(Resize, GivesTheSameBytesEverywhere) {
    for (const auto& [percent, checksum] :
         {std::pair{37.0, 7373656576689830957ULL}, {180.0, 15946114296125009372ULL}}) {
        const DecodedPicture got =
            Resized(BusyPicture(61, 47, 5), {Kind::Scale, {}, Fit::Contain, percent}, kMany);
        EXPECT_EQ(DibChecksum(got.picture.Get()), checksum) << percent;
    }
}

} // namespace
} // namespace lumafold::test
