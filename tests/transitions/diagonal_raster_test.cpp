#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

/// The frame by its definition: a mask of stripes, a work picture and two blends.
OwnedDib PlainRaster(const DibHeader* s, const DibHeader* t, int p, int n, bool mirrored) {
    const int w = s->biWidth, h = s->biHeight, shift = std::min(w, h) * p / 100;
    const OwnedDib maskPicture(DibCreate(w, h, nullptr, 24)), workPicture = CopyOf(s);
    const LockedDib mask(maskPicture.Get()), work(workPicture.Get());
    for (int y = 0; y < h; ++y) {
        for (int c = -h; c <= w;) {
            for (const PixelValue paint : {0x000000U, 0xFFFFFFU}) {
                for (int i = 0; i < n; ++i, ++c) {
                    DibSetPixel(*mask, mirrored ? w - (c + y) - 1 : c + y, y, paint);
                }
            }
        }
    }
    const int outX = mirrored ? w - shift : shift - w, outY = shift - h;
    DibCopyRect(*work, outX, outY, t, 0, 0, w, h);
    const OwnedDib firstPicture(DibMaskBlend(s, work.Get(), mask.Get()));
    const LockedDib first(firstPicture.Get());
    const OwnedDib turned =
        Picture(w, h, [&](int x, int y) { return DibGetPixel(*mask, x, y) ^ 0xFFFFFF; });
    DibCopyRect(*work, 0, 0, *first, 0, 0, w, h);
    DibCopyRect(*work, -outX, -outY, t, 0, 0, w, h);
    return OwnedDib(DibMaskBlend(first.Get(), work.Get(), LockedDib(turned.Get()).Get()));
}

TEST(DiagonalRaster, IsItsDefinition) {
    const SettingsGuard guard;
    pluginSettings.TransitionDiagonalRasterStep = 9;
    for (const char* name : {"Diagonal raster (left)", "Diagonal raster (right)"}) {
        for (const CanvasSize size : kOddSizes) {
            EXPECT_EQ(FrameCount(RowNamed(name), size.width, size.height), 13);
            for (const int width : {1, 2, 3, 8, 64, 1000}) {
                pluginSettings.TransitionDiagonalRasterSize = static_cast<std::uint32_t>(width);
                ExpectFrames(name, size, [&](int i, const DibHeader* from, const DibHeader* to) {
                    return PlainRaster(from, to, 9 * (i - 1), width, name[17] == 'r');
                });
            }
        }
    }
}

} // namespace
} // namespace lumafold::test
