#include "tests/transitions/effect_checks.h"

#include "transitions/compositing.h"

namespace lumafold::test {
namespace {

/// The frame by its definition: a mask of stripes, a work picture and two blends.
OwnedDib PlainRaster(const Rendered& run, int p, int n, bool mirrored) {
    const LockedDib s(run.source.Get()), t(run.target.Get());
    const int w = s->biWidth, h = s->biHeight, shift = std::min(w, h) * p / 100;
    const OwnedDib maskPicture(DibCreate(w, h, nullptr, 24)), workPicture(GlobalDuplicate(run.source.Get()));
    const LockedDib mask(maskPicture.Get()), work(workPicture.Get());
    for (int y = 0; y < h; ++y) {
        for (int c = -h; c <= w;) {
            for (const PixelValue paint : {0x000000U, 0xFFFFFFU}) {
                for (int i = 0; i < n; ++i, ++c) {
                    DibSetPixel(mask.Get(), mirrored ? w - (c + y) - 1 : c + y, y, paint);
                }
            }
        }
    }
    const int outX = mirrored ? w - shift : shift - w, outY = shift - h;
    DibCopyRect(work.Get(), outX, outY, t.Get(), 0, 0, w, h);
    const OwnedDib firstPicture(DibMaskBlend(s.Get(), work.Get(), mask.Get()));
    const LockedDib first(firstPicture.Get());
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            DibSetPixel(mask.Get(), x, y, DibGetPixel(mask.Get(), x, y) ^ 0xFFFFFF);
        }
    }
    DibCopyRect(work.Get(), 0, 0, first.Get(), 0, 0, w, h);
    DibCopyRect(work.Get(), -outX, -outY, t.Get(), 0, 0, w, h);
    return OwnedDib(DibMaskBlend(first.Get(), work.Get(), mask.Get()));
}

TEST(DiagonalRaster, IsItsDefinition) {
    const SettingsGuard guard;
    pluginSettings.TransitionDiagonalRasterStep = 9;
    for (const char* name : {"Diagonal raster (left)", "Diagonal raster (right)"}) {
        const bool mirrored = name[17] == 'r';
        for (const CanvasSize size : kOddSizes) {
            for (const int width : {1, 2, 3, 8, 64, 1000}) {
                pluginSettings.TransitionDiagonalRasterSize = static_cast<std::uint32_t>(width);
                Rendered run = BusyRun(name, size);
                ASSERT_EQ(run.result.Count(), 13);
                for (std::int32_t i = 1; i < 13; ++i) {
                    SCOPED_TRACE(std::string(name) + std::to_string(size.width) + ' ' +
                                 std::to_string(width));
                    ExpectSamePicture(run.result.Image(i),
                                      PlainRaster(run, 9 * (i - 1), width, mirrored).Get());
                }
            }
        }
    }
}

TEST(DiagonalRaster, StripesByHand) {
    const SettingsGuard guard;
    pluginSettings.TransitionDiagonalRasterStep = 50;
    pluginSettings.TransitionDiagonalRasterSize = 2;
    Rendered left = BlackToWhite("Diagonal raster (left)", {8, 8}),
             right = BlackToWhite("Diagonal raster (right)", {8, 8});
    ASSERT_EQ(left.result.Count(), 3);
    EXPECT_EQ(Drawing(left.result.Image(2)), "##....../"
                                             ".##...../"
                                             "..##..../"
                                             "#..#..../"
                                             "......##/"
                                             "....#..#/"
                                             "....##../"
                                             ".....##./");
    EXPECT_EQ(Drawing(right.result.Image(2)), "......##/"
                                              ".....##./"
                                              "....##../"
                                              "....#..#/"
                                              "##....../"
                                              "#..#..../"
                                              "..##..../"
                                              ".##...../");
}

} // namespace
} // namespace lumafold::test
