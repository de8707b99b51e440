#include "tests/support/checksum.h"
#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

/// A black and white shape, its edge grey: what masks look like.
OwnedDib MaskPicture(std::int32_t width, std::int32_t height) {
    return Picture(width, height, [=](int x, int y) {
        return static_cast<unsigned>(std::clamp((x - width / 3) * 90 + (y - height / 3) * 30, 0, 255)) *
               0x010101;
    });
}

/// Its one channel, as the effects hold it.
Mask MaskOf(const DibHeader& picture) {
    Mask mask(picture.biWidth, picture.biHeight);
    for (std::int32_t i = 0; i < mask.Width() * mask.Height(); ++i)
        mask.Row(0)[i] = static_cast<std::uint8_t>(DibGetPixel(picture, i % mask.Width(), i / mask.Width()));
    return mask;
}

/// Every line along one axis by the definition of a row.
void PlainPass(const Array<double>& kernel, DibHeader& dib, bool wide) {
    const std::int32_t lines = wide ? dib.biHeight : dib.biWidth, count = wide ? dib.biWidth : dib.biHeight;
    std::vector<std::uint8_t> line(static_cast<std::size_t>(count) * 3), result(line.size());
    for (std::int32_t at = 0; at < lines; ++at) {
        for (std::int32_t i = 0; i < count; ++i)
            StoreColour(&line[static_cast<std::size_t>(i) * 3],
                        DibGetPixel(dib, wide ? i : at, wide ? at : i));
        BlurRow(kernel, line.data(), result.data(), count);
        for (std::int32_t i = 0; i < count; ++i)
            DibSetPixel(dib, wide ? i : at, wide ? at : i,
                        LoadColour(&result[static_cast<std::size_t>(i) * 3]));
    }
}

TEST(Compositing, BlurIsTheDefinition) {
    for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {130, 70}}) {
        // The last is wider than any picture, and its kernel still fits in memory.
        for (const std::int32_t radius : {0, 2, 25, 32, 100, 400, 2000, 5242880}) {
            SCOPED_TRACE(testing::Message() << size.width << " wide, radius " << radius);
            const std::int32_t sigma = radius == 32 ? 10 : 100;
            const Array<double> kernel =
                GaussianKernel(2 * static_cast<std::int32_t>(std::ceil(radius * 0.1)) + 1, sigma * 0.1);
            ASSERT_TRUE(kernel);
            OwnedDib plainMask = MaskPicture(size.width, size.height),
                     plain = BusyPicture(size.width, size.height, 4);
            const Mask blurredMask = MaskGaussianBlur(MaskOf(*plainMask), radius, sigma);
            const OwnedDib blurred = DibGaussianBlur(*plain, radius, sigma);
            for (const bool wide : {true, false}) {
                PlainPass(kernel, *plainMask, wide);
                PlainPass(kernel, *plain, wide);
            }
            ExpectSamePicture(*blurred, *plain);
            const Mask expected = MaskOf(*plainMask);
            EXPECT_TRUE(std::equal(expected.Row(0), expected.Row(size.height), blurredMask.Row(0)));
        }
    }
}

TEST(Compositing, KernelAndRowByHand) {
    // Three samples a tap at thirds of a pixel, to 30 digits and rounded: the middle and the outermost of 21.
    const Array<double> kernel = GaussianKernel(21, 10.0);
    EXPECT_NEAR(kernel[10], 0.05646215092960072674, 2e-17);
    EXPECT_NEAR(kernel[0], 0.03425870819052014908, 2e-17);
    EXPECT_NEAR(kernel[20], kernel[0], 1e-16);
    EXPECT_EQ(GaussianKernel(1, 1.0)[0], 1.0);
    EXPECT_EQ(GaussianKernel(0, 1.0).size(), 3U);
    EXPECT_FALSE(GaussianKernel(INT32_MAX, 10.0));
    // A flat row stays, its border no brighter than 255; the ramp is 30 a pixel from the second on.
    const std::uint8_t row[12] = {100, 0, 255, 100, 0, 255, 100, 30, 255, 100, 60, 255};
    const std::uint8_t expected[12] = {100, 0, 255, 100, 10, 255, 100, 30, 255, 100, 45, 255};
    std::uint8_t out[12];
    BlurRow(GaussianKernel(3, 10.0), row, out, 4);
    EXPECT_TRUE(std::equal(out, out + 12, expected));
}

TEST(Compositing, CrossfadeOverAllPairs) {
    // Every pair of bytes, the channels running different ways.
    const OwnedDib a = Picture(256, 256, [](int x, int) {
        const auto u = static_cast<unsigned>(x);
        return MakeColour(u, u, 255 - u);
    });
    const OwnedDib b = Picture(256, 256, [](int, int y) { return static_cast<unsigned>(y) * 0x010101; });
    for (unsigned t = 0; t <= 255; ++t) {
        const OwnedDib faded = DibCrossfade(*a, *b, static_cast<int>(t));
        const OwnedDib expected = Picture(256, 256, [&](int x, int y) {
            return PlainMix(DibGetPixel(*a, x, y), DibGetPixel(*b, x, y), t);
        });
        ASSERT_EQ(DibChecksum(faded.Get()), DibChecksum(expected.Get())) << t;
    }
    // Equal colours may lose a level.
    const OwnedDib grey = PlainPicture(1, 1, MakeColour(100, 100, 100));
    EXPECT_EQ(DibGetPixel(*DibCrossfade(*grey, *grey, 128), 0, 0), MakeColour(99, 99, 99));
}

/// Masks of every kind, at every width up to 70 so that every alignment and every block's end occurs.
TEST(Compositing, MaskBlendIsTheDefinition) {
    for (std::int32_t width = 1; width <= 70; ++width) {
        const OwnedDib a = BusyPicture(width, 5, 1), b = NoisePicture(width, 5, 24, 2);
        const OwnedDib masks[] = {PlainPicture(width, 5, 0),    PlainPicture(width, 5, 0xFFFFFF),
                                  MaskPicture(width, 5),        BusyPicture(width, 5, 3),
                                  NoisePicture(width, 5, 8, 3), NoisePicture(width, 5, 1, 3)};
        for (const OwnedDib& mask : masks) {
            SCOPED_TRACE(testing::Message() << width << " wide, mask " << &mask - masks);
            const bool oneBit = mask->biBitCount == 1;
            const OwnedDib expected = Picture(width, 5, [&](int x, int y) {
                const PixelValue weight = DibGetPixel(*mask, x, y);
                return PlainMix(DibGetPixel(*b, x, y), DibGetPixel(*a, x, y),
                                oneBit ? weight * 255 : weight & 0xFF);
            });
            ExpectSamePicture(*DibMaskBlend(*a, *b, *mask), *expected);
            if (!oneBit) ExpectSamePicture(*MaskBlend(*a, *b, MaskOf(*mask)), *expected);
        }
    }
}

TEST(Compositing, MasksBlendThroughAWindowAndIntoABox) {
    const OwnedDib a = PlainPicture(20, 9, 0xFFFFFF), b = PlainPicture(20, 9, 0);
    const OwnedDib large = NoisePicture(41, 30, 8, 5), small = NoisePicture(7, 4, 8, 6);
    const OwnedDib window = MaskBlend(*a, *b, MaskOf(*large), 21, 17);
    OwnedDib box = PlainPicture(20, 9, 0x123456);
    MaskBlendBox(*a, *b, MaskOf(*small), {13, 5, 20, 9}, *box);
    for (std::int32_t i = 0; i < 20 * 9; ++i) {
        const std::int32_t x = i % 20, y = i / 20;
        EXPECT_EQ(DibGetPixel(*window, x, y), DibGetPixel(*large, 21 + x, 17 + y) * 0x010101);
        EXPECT_EQ(DibGetPixel(*box, x, y),
                  x < 13 || y < 5 ? 0x123456 : DibGetPixel(*small, x - 13, y - 5) * 0x010101);
    }
}

TEST(Compositing, MissingPixelsAreWhite) {
    const OwnedDib large = PlainPicture(4, 4, MakeColour(10, 20, 30)), small = PlainPicture(2, 2, 0);
    const OwnedDib faded = DibCrossfade(*large, *small, 255);
    EXPECT_EQ(DibGetPixel(*faded, 1, 1), 0U);
    EXPECT_EQ(DibGetPixel(*faded, 2, 1), 0xFFFFFFU);
    const OwnedDib blended = DibMaskBlend(*large, *small, *small);
    EXPECT_EQ(DibGetPixel(*blended, 1, 1), 0U);
    // Beyond the mask, too, weight is white.
    EXPECT_EQ(DibGetPixel(*blended, 2, 1), MakeColour(10, 20, 30));
}

} // namespace
} // namespace lumafold::test
