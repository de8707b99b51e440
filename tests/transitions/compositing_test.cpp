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

/// Every line along one axis by the definition of a row.
void PlainPass(const Array<double>& kernel, DibHeader* dib, bool wide) {
    const std::int32_t lines = wide ? dib->biHeight : dib->biWidth,
                       count = wide ? dib->biWidth : dib->biHeight;
    std::vector<std::uint8_t> line(static_cast<std::size_t>(count) * 3), result(line.size());
    for (std::int32_t at = 0; at < lines; ++at) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            const auto along = static_cast<std::int32_t>(i / 3);
            const PixelValue pixel = DibGetPixel(dib, wide ? along : at, wide ? at : along);
            line[i] = static_cast<std::uint8_t>(pixel >> (8 * (i % 3)));
        }
        BlurRow(kernel, line.data(), result.data(), count);
        for (std::int32_t i = 0; i < count; ++i) {
            const std::uint8_t* pixel = &result[static_cast<std::size_t>(i) * 3];
            DibSetPixel(dib, wide ? i : at, wide ? at : i, MakeColour(pixel[0], pixel[1], pixel[2]));
        }
    }
}

TEST(Compositing, BlurIsTheDefinition) {
    for (const CanvasSize size : {CanvasSize{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}, {90, 40}}) {
        for (const std::int32_t radius : {0, 2, 25, 32, 100, 400, 2000}) {
            for (const bool mask : {false, true}) {
                SCOPED_TRACE(testing::Message() << size.width << ", radius " << radius << ", mask " << mask);
                const std::int32_t sigma = radius == 32 ? 10 : 100;
                OwnedDib source =
                    mask ? MaskPicture(size.width, size.height) : BusyPicture(size.width, size.height, 4);
                const OwnedDib expected(GlobalDuplicate(source.Get()));
                const OwnedDib blurred(DibGaussianBlur(source.Get(), radius, sigma));
                const Array<double> kernel =
                    GaussianKernel(2 * static_cast<std::int32_t>(std::ceil(radius * 0.1)) + 1, sigma * 0.1);
                const LockedDib e(expected.Get());
                PlainPass(kernel, e.Get(), true);
                ExpectSamePicture(source.Get(), expected.Get()); // what was given is blurred horizontally
                PlainPass(kernel, e.Get(), false);
                ExpectSamePicture(blurred.Get(), expected.Get());
            }
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
    const LockedDib lockedA(a.Get()), lockedB(b.Get());
    for (unsigned t = 0; t <= 255; ++t) {
        const OwnedDib faded(DibCrossfade(lockedA.Get(), lockedB.Get(), static_cast<int>(t)));
        const OwnedDib expected = Picture(256, 256, [&](int x, int y) {
            return PlainMix(DibGetPixel(*lockedA, x, y), DibGetPixel(*lockedB, x, y), t);
        });
        ASSERT_EQ(DibChecksum(faded.Get()), DibChecksum(expected.Get())) << t;
    }
    // Equal colours may lose a level.
    const OwnedDib grey = PlainPicture(1, 1, MakeColour(100, 100, 100));
    const OwnedDib faded(DibCrossfadeHandles(grey.Get(), grey.Get(), 128));
    EXPECT_EQ(PixelAt(faded.Get(), 0, 0), MakeColour(99, 99, 99));
    EXPECT_EQ(DibCrossfadeHandles(grey.Get(), 0, 128), 0U);
}

/// Masks of every kind, at every width up to 40 so that every alignment and every block's end occurs.
TEST(Compositing, MaskBlendIsTheDefinition) {
    for (std::int32_t width = 1; width <= 40; ++width) {
        const OwnedDib a = BusyPicture(width, 5, 1), b = NoisePicture(width, 5, 24, 2);
        const OwnedDib masks[] = {PlainPicture(width, 5, 0),    PlainPicture(width, 5, 0xFFFFFF),
                                  MaskPicture(width, 5),        BusyPicture(width, 5, 3),
                                  NoisePicture(width, 5, 8, 3), NoisePicture(width, 5, 1, 3)};
        for (const OwnedDib& mask : masks) {
            const LockedDib lockedA(a.Get()), lockedB(b.Get()), m(mask.Get());
            SCOPED_TRACE(testing::Message() << width << " wide, mask " << &mask - masks);
            const OwnedDib blended(DibMaskBlend(lockedA.Get(), lockedB.Get(), m.Get()));
            const OwnedDib expected = Picture(width, 5, [&](int x, int y) {
                const PixelValue weight = DibGetPixel(*m, x, y),
                                 share = m->biBitCount == 1 ? weight * 255 : weight & 0xFF;
                return PlainMix(DibGetPixel(*lockedB, x, y), DibGetPixel(*lockedA, x, y), share);
            });
            ExpectSamePicture(blended.Get(), expected.Get());
        }
    }
}

TEST(Compositing, MissingPixelsAreWhite) {
    const OwnedDib large = PlainPicture(4, 4, MakeColour(10, 20, 30)), small = PlainPicture(2, 2, 0);
    const LockedDib a(large.Get()), b(small.Get());
    const OwnedDib faded(DibCrossfade(a.Get(), b.Get(), 255));
    EXPECT_EQ(PixelAt(faded.Get(), 1, 1), 0U);
    EXPECT_EQ(PixelAt(faded.Get(), 2, 1), 0xFFFFFFU);
    const OwnedDib blended(DibMaskBlend(a.Get(), b.Get(), b.Get()));
    EXPECT_EQ(PixelAt(blended.Get(), 1, 1), 0U);
    EXPECT_EQ(PixelAt(blended.Get(), 2, 1), MakeColour(10, 20, 30)); // beyond the mask, too, weight is white
}

} // namespace
} // namespace lumafold::test
