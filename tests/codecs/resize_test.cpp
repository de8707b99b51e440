#include <gtest/gtest.h>

#include <cmath>

#include "codecs/resize.h"
#include "image/row_view.h"
#include "tests/support/colours.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Kind = SizeRequest::Kind;
constexpr std::uint64_t kMany = 1 << 24;
constexpr PixelValue kMatte = MakeColour(9, 90, 200), kLeft = MakeColour(255, 0, 0),
                     kRight = MakeColour(0, 0, 255);

/// Left half one colour, right half the other.
OwnedDib Halves(std::int32_t width, std::int32_t height) {
    OwnedDib picture = PlainPicture(width, height, kLeft);
    const LockedDib dib(picture.Get());
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = width / 2; x < width; ++x)
            DibSetPixel(*dib, x, y, kRight);
    }
    return picture;
}

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
        {{Kind::Scale, {}, Fit::Contain, 250}, {4, 3}, {10, 8}},
        {{Kind::Scale, {}, Fit::Contain, 0.001}, {40, 30}, {1, 1}},
        {{Kind::Scale, {}, Fit::Contain, 1e300}, {40, 30}, {2 * kLargestSide, 2 * kLargestSide}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(SizeFor(one.request, one.from), one.to) << one.from.width;
        const DecodedPicture got = Resized(Halves(one.from.width, one.from.height), one.request, kMany);
        const bool fits = one.to.width <= kLargestSide;
        ASSERT_EQ(got.error.empty(), fits) << got.error;
        if (!fits) continue;
        const LockedDib dib(got.picture.Get());
        EXPECT_EQ((PictureSize{dib->biWidth, dib->biHeight}), one.to);
    }
    EXPECT_NE(Resized(Halves(4, 4), {Kind::Exact, {100, 100}}, 9999).error.find("too many"),
              std::string::npos);
}

TEST(Resize, FitsInCutsOrStretches) {
    const auto row = [](Fit fit, PictureSize to, int y) {
        const DecodedPicture got = Resized(Halves(40, 20), {Kind::Exact, to, fit, 100, kMatte}, kMany);
        const LockedDib dib(got.picture.Get());
        std::string seen;
        for (const int x : {0, to.width / 4, to.width * 3 / 4 - 1, to.width - 1}) {
            const PixelValue value = DibGetPixel(*dib, x, y);
            seen += value == kLeft ? 'l' : value == kRight ? 'r' : value == kMatte ? 'm' : '?';
        }
        return seen;
    };
    EXPECT_EQ(row(Fit::Contain, {20, 20}, 4) + row(Fit::Contain, {20, 20}, 5), "mmmmllrr");
    EXPECT_EQ(row(Fit::Contain, {20, 20}, 14) + row(Fit::Contain, {20, 20}, 15), "llrrmmmm");
    EXPECT_EQ(row(Fit::Contain, {80, 20}, 0) + row(Fit::Contain, {80, 20}, 19), "mlrmmlrm");
    EXPECT_EQ(row(Fit::Cover, {20, 20}, 0) + row(Fit::Cover, {20, 20}, 19), "llrrllrr");
    EXPECT_EQ(row(Fit::Cover, {80, 10}, 0), "llrr");
    EXPECT_EQ(row(Fit::Stretch, {20, 20}, 0), "llrr");
}

TEST(Resize, KeepsTheTopAndCutsEvenly) {
    // Four quarters down the picture; the middle two are left.
    OwnedDib picture(DibCreate(8, 64, nullptr, 24));
    {
        const LockedDib dib(picture.Get());
        for (std::int32_t i = 0; i < 8 * 64; ++i)
            DibSetPixel(*dib, i % 8, i / 8, static_cast<PixelValue>(i / 8 / 16 * 80));
    }
    const DecodedPicture got = Resized(std::move(picture), {Kind::Exact, {8, 32}, Fit::Cover}, kMany);
    const LockedDib dib(got.picture.Get());
    EXPECT_EQ(DibGetPixel(*dib, 4, 0), 80U);
    EXPECT_EQ(DibGetPixel(*dib, 4, 31), 160U);
}

TEST(Resize, MixesLightInsteadOfSamples) {
    // Black and white by turns give half the light, which is 188 of 255.
    for (const int bits : {1, 24}) {
        const Palette palette{Rgb{0, 0, 0}, Rgb{255, 255, 255}};
        OwnedDib picture(DibCreate(64, 64, &palette, bits));
        {
            const LockedDib dib(picture.Get());
            for (std::int32_t i = 0; i < 64 * 64; ++i)
                DibSetPixel(*dib, i % 64, i / 64,
                            (i % 64 + i / 64) % 2 == 0 ? 0
                            : bits == 1                ? 1
                                                       : 0xFFFFFF);
        }
        const DecodedPicture got = Resized(std::move(picture), {Kind::Scale, {}, Fit::Contain, 25}, kMany);
        const LockedDib dib(got.picture.Get());
        ASSERT_EQ(dib->biBitCount, 24);
        EXPECT_NEAR(ColourAt(*dib, 8, 8).green, 188, 1);
    }
}

TEST(Resize, LeavesWhatHasItsSizeAlone) {
    OwnedDib picture = NoisePicture(13, 7, 4, 3);
    const DibHandle handle = picture.Get();
    EXPECT_EQ(Resized(std::move(picture), {Kind::AtMost, {13, 7}}, 1).picture.Get(), handle);
}

TEST(Resize, TakesVeryTallPicturesToOneRow) {
    const DecodedPicture got = Resized(PlainPicture(kLargestSide, kLargestSide / 5, kLeft),
                                       {Kind::Exact, {kLargestSide, 1}, Fit::Stretch}, kMany);
    ASSERT_EQ(got.error, "");
    const LockedDib dib(got.picture.Get());
    EXPECT_EQ(DibGetPixel(*dib, 0, 0), kLeft);
    EXPECT_EQ(DibGetPixel(*dib, kLargestSide - 1, 0), kLeft);
}

} // namespace
} // namespace lumafold::test
