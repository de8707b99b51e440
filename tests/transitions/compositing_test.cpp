#include "transitions/compositing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "image/row_view.h"
#include "tests/support/checksum.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

struct Size {
    std::int32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {16, 16}, {61, 47}, {90, 40}};

/// A black and white shape, its edge grey, on `width` x `height`: what masks look like.
OwnedDib MaskPicture(std::int32_t width, std::int32_t height) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const int level = std::clamp((x - width / 3) * 90 + (y - height / 3) * 30, 0, 255);
            DibSetPixel(dib.Get(), x, y,
                        MakeColour(static_cast<unsigned>(level), static_cast<unsigned>(level),
                                   static_cast<unsigned>(level)));
        }
    }
    return picture;
}

void ExpectEqual(DibHandle picture, DibHandle expected) {
    const LockedDib p(picture), e(expected);
    ASSERT_TRUE(p && e);
    ASSERT_EQ(p->biWidth, e->biWidth);
    ASSERT_EQ(p->biHeight, e->biHeight);
    for (std::int32_t y = 0; y < p->biHeight; ++y) {
        for (std::int32_t x = 0; x < p->biWidth; ++x) {
            ASSERT_EQ(DibGetPixel(p.Get(), x, y), DibGetPixel(e.Get(), x, y)) << x << "," << y;
        }
    }
}

// --- blur
// -------------------------------------------------------------------------------------------------------

int BlurredByte(const std::vector<double>& kernel, const std::vector<int>& line, int x) {
    const int n = static_cast<int>(kernel.size()), h = n / 2, count = static_cast<int>(line.size());
    double acc = 0, wsum = 0;
    for (int k = 0; k < n; ++k) {
        const int at = x - h + k;
        if (at < 0 || at >= count) continue;
        acc += kernel[static_cast<std::size_t>(k)] * line[static_cast<std::size_t>(at)];
        wsum += kernel[static_cast<std::size_t>(k)];
    }
    if (x >= h && x < count - h) return static_cast<int>(acc + 0.5);
    return std::min(static_cast<int>((acc + 0.5) / wsum), 255);
}

/// Every channel of every line along one axis, pixel by pixel.
void PlainPass(const std::vector<double>& kernel, DibHeader* dib, bool wide) {
    const std::int32_t lines = wide ? dib->biHeight : dib->biWidth,
                       count = wide ? dib->biWidth : dib->biHeight;
    for (std::int32_t at = 0; at < lines; ++at) {
        std::vector<PixelValue> result(static_cast<std::size_t>(count));
        for (int shift = 0; shift < 24; shift += 8) {
            std::vector<int> line;
            for (std::int32_t i = 0; i < count; ++i) {
                line.push_back((wide ? DibGetPixel(dib, i, at) : DibGetPixel(dib, at, i)) >> shift & 0xFF);
            }
            for (std::int32_t i = 0; i < count; ++i) {
                result[static_cast<std::size_t>(i)] |= static_cast<PixelValue>(BlurredByte(kernel, line, i))
                                                       << shift;
            }
        }
        for (std::int32_t i = 0; i < count; ++i) {
            DibSetPixel(dib, wide ? i : at, wide ? at : i, result[static_cast<std::size_t>(i)]);
        }
    }
}

TEST(Compositing, BlurIsTheDefinition) {
    for (const Size size : kSizes) {
        for (const std::int32_t radius : {0, 2, 25, 32, 35, 100, 400, 2000}) {
            for (const bool mask : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << size.width << "x" << size.height << " radius " << radius << " mask " << mask);
                const std::int32_t sigma = radius == 32 ? 10 : 100;
                OwnedDib source =
                    mask ? MaskPicture(size.width, size.height) : BusyPicture(size.width, size.height, 4);
                const OwnedDib expected(GlobalDuplicate(source.Get()));
                const OwnedDib blurred(DibGaussianBlur(source.Get(), radius, sigma));
                const Array<double> weights =
                    GaussianKernel(2 * static_cast<std::int32_t>(std::ceil(radius * 0.1)) + 1, sigma * 0.1);
                const std::vector<double> kernel(weights.begin(), weights.end());
                const LockedDib e(expected.Get());
                PlainPass(kernel, e.Get(), true);
                ExpectEqual(source.Get(), expected.Get()); // the picture given is left blurred horizontally
                PlainPass(kernel, e.Get(), false);
                ExpectEqual(blurred.Get(), expected.Get());
            }
        }
    }
}

TEST(Compositing, KernelWeights) {
    for (const std::int32_t taps : {-4, 0, 1, 3, 9, 21, 81}) {
        const Array<double> kernel = GaussianKernel(taps, 10.0);
        ASSERT_EQ(kernel.size(), static_cast<std::size_t>(taps < 1 ? 3 : taps));
        double sum = 0;
        for (std::size_t k = 0; k < kernel.size(); ++k) {
            sum += kernel[k];
            EXPECT_NEAR(kernel[k], kernel[kernel.size() - 1 - k], 1e-16);
        }
        EXPECT_NEAR(sum, 1.0, 1e-15);
    }
    // Three samples a tap at thirds of a pixel, to 30 digits and rounded: the middle and the outermost of 21.
    const Array<double> kernel = GaussianKernel(21, 10.0);
    EXPECT_NEAR(kernel[10], 0.05646215092960072674, 2e-17);
    EXPECT_NEAR(kernel[0], 0.03425870819052014908, 2e-17);
    EXPECT_EQ(GaussianKernel(1, 1.0)[0], 1.0);
    EXPECT_FALSE(GaussianKernel(INT32_MAX, 10.0));
}

TEST(Compositing, BlurRowKeepsItsBorders) {
    const Array<double> kernel = GaussianKernel(3, 10.0);
    const std::uint8_t row[12] = {100, 0, 255, 100, 0, 255, 100, 30, 255, 100, 60, 255};
    std::uint8_t out[12];
    BlurRow(kernel, row, out, 4);
    // A flat row stays, its border no brighter than 255; the ramp is 30 a pixel from the second on.
    const std::uint8_t expected[12] = {100, 0, 255, 100, 10, 255, 100, 30, 255, 100, 45, 255};
    EXPECT_TRUE(std::equal(out, out + 12, expected));
}

TEST(Compositing, BlurFailsCleanly) {
    const OwnedDib indexed = NoisePicture(5, 5, 8, 1);
    EXPECT_EQ(DibGaussianBlur(indexed.Get(), 100, 100), 0U);
    EXPECT_EQ(DibGaussianBlur(0, 100, 100), 0U);
    for (const bool grey : {false, true}) {
        std::int64_t points = 0;
        for (std::int64_t n = 1;; ++n) {
            const OwnedDib source = grey ? MaskPicture(61, 47) : BusyPicture(61, 47, 1);
            const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
            allocation_hooks::FailNth(n);
            OwnedDib blurred(DibGaussianBlur(source.Get(), 100, 100));
            const bool failed = allocation_hooks::HasFailed();
            allocation_hooks::FailNth(0);
            if (!failed) break;
            ++points;
            // The second is the kernel's: without one there are no taps, and the picture comes out black.
            EXPECT_EQ(static_cast<bool>(blurred), n == 2) << n;
            if (blurred) {
                EXPECT_EQ(PixelAt(blurred.Get(), 30, 30), 0U);
            }
            blurred = OwnedDib();
            EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
            EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
        }
        EXPECT_GE(points, 4);
    }
}

// --- cross-fade and mask blend
// ----------------------------------------------------------------------------------

/// Every pair of bytes, as pictures of 256 x 256 whose channels run different ways.
struct AllPairs {
    OwnedDib a, b;
    AllPairs() : a(DibCreate(256, 256, nullptr, 24)), b(DibCreate(256, 256, nullptr, 24)) {
        const LockedDib lockedA(a.Get()), lockedB(b.Get());
        for (std::int32_t y = 0; y < 256; ++y) {
            for (std::int32_t x = 0; x < 256; ++x) {
                const auto u = static_cast<unsigned>(x), v = static_cast<unsigned>(y);
                DibSetPixel(lockedA.Get(), x, y, MakeColour(u, v, 255 - u));
                DibSetPixel(lockedB.Get(), x, y, MakeColour(v, u, v));
            }
        }
    }
};

PixelValue PlainMix(PixelValue a, PixelValue b, int shareOfB) {
    PixelValue result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int byteA = a >> shift & 0xFF, byteB = b >> shift & 0xFF;
        result |= static_cast<PixelValue>(byteB * shareOfB / 255 + byteA * (255 - shareOfB) / 255) << shift;
    }
    return result;
}

TEST(Compositing, CrossfadeOverAllPairs) {
    const AllPairs all;
    const LockedDib a(all.a.Get()), b(all.b.Get());
    for (int t = 0; t <= 255; ++t) {
        const OwnedDib faded(DibCrossfade(a.Get(), b.Get(), t));
        const LockedDib f(faded.Get());
        for (std::int32_t y = 0; y < 256; ++y) {
            for (std::int32_t x = 0; x < 256; ++x) {
                ASSERT_EQ(DibGetPixel(f.Get(), x, y),
                          PlainMix(DibGetPixel(a.Get(), x, y), DibGetPixel(b.Get(), x, y), t));
            }
        }
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
        for (int kind = 0; kind < 6; ++kind) {
            SCOPED_TRACE(testing::Message() << width << " wide, mask " << kind);
            const std::int32_t height = 5;
            const OwnedDib a = BusyPicture(width, height, 1), b = NoisePicture(width, height, 24, 2);
            const OwnedDib mask = kind == 0   ? PlainPicture(width, height, 0)
                                  : kind == 1 ? PlainPicture(width, height, 0xFFFFFF)
                                  : kind == 2 ? MaskPicture(width, height)
                                  : kind == 3 ? BusyPicture(width, height, 3)
                                              : NoisePicture(width, height, kind == 4 ? 8 : 1, 3);
            const LockedDib lockedA(a.Get()), lockedB(b.Get()), m(mask.Get());
            const OwnedDib blended(DibMaskBlend(lockedA.Get(), lockedB.Get(), m.Get()));
            for (std::int32_t y = 0; y < height; ++y) {
                for (std::int32_t x = 0; x < width; ++x) {
                    const PixelValue pa = PixelAt(a.Get(), x, y), pb = PixelAt(b.Get(), x, y);
                    const PixelValue weight = PixelAt(mask.Get(), x, y);
                    const PixelValue expected = kind == 5 ? (weight == 0 ? pb : pa)
                                                          : PlainMix(pb, pa, static_cast<int>(weight & 0xFF));
                    ASSERT_EQ(PixelAt(blended.Get(), x, y), expected) << x << "," << y;
                }
            }
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
