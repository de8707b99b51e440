#include "image/dib.h"

#include <gtest/gtest.h>

#include "image/frame_list.h"
#include "image/row_view.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

constexpr int kDepths[] = {1, 4, 8, 24, 32};

std::vector<std::uint8_t> BytesOf(const OwnedDib& dib) {
    const GlobalLocked<const std::uint8_t> block(dib.Get());
    return {block.Get(), block.Get() + GlobalBytes(dib.Get())};
}

TEST(Dib, HasThePackedLayout) {
    // requested bits, depth made, table entries, stride at 7 pixels
    const int cases[][4] = {{0, 32, 1, 28},  {1, 1, 2, 4},   {2, 4, 16, 4},  {3, 4, 16, 4},
                            {5, 8, 256, 8},  {8, 8, 256, 8}, {9, 24, 0, 24}, {16, 24, 0, 24},
                            {24, 24, 0, 24}, {25, 32, 1, 28}};
    for (const auto& [asked, bits, colours, stride] : cases) {
        SCOPED_TRACE(asked);
        OwnedDib dib = DibCreate(7, 3, nullptr, asked);
        ASSERT_TRUE(dib);
        EXPECT_EQ(std::tuple(+dib->biSize, +dib->biPlanes, +dib->biBitCount), std::tuple(40U, 1, bits));
        EXPECT_EQ(std::tuple(+dib->biClrUsed, +dib->biClrImportant), std::tuple(colours, colours));
        EXPECT_EQ(dib->biSizeImage, static_cast<std::uint32_t>(stride * 3));
        EXPECT_GE(GlobalBytes(dib.Get()), static_cast<std::size_t>(40 + colours * 4 + stride * 3));
        // Top-down pictures, bottom-up rows: the first pixel is the first of the last stored row.
        DibSetPixel(*dib, 0, 0, 1);
        const int table = bits <= 8 ? colours * 4 : 0, channel = bits >= 24 ? 2 : 0; // red is the third byte
        EXPECT_NE(BytesOf(dib)[static_cast<std::size_t>(40 + table + 2 * stride + channel)], 0);
    }
    for (const auto& [width, height] :
         {std::pair{-1, 5}, {5, -1}, {1 << 20, 1 << 20}, {INT32_MAX, 1}, {1, INT32_MAX}}) {
        EXPECT_FALSE(DibCreate(width, height, nullptr, 24));
    }
}

TEST(Dib, OwnersHoldTheirPictureLockedUntilTheyGiveItAway) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    {
        OwnedDib first = NoisePicture(3, 3, 24, 1), second;
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks + 1);
        second = std::move(first);
        OwnedDib third(std::move(second));
        const DibHandle given = third.Release();
        EXPECT_FALSE(third);
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
        EXPECT_TRUE(OwnedDib(given));
    }
    EXPECT_FALSE(OwnedDib(DibHandle{0}));
    EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

TEST(Dib, AccessorsPackEveryDepth) {
    for (const int bits : kDepths) {
        SCOPED_TRACE(bits);
        OwnedDib dib = NoisePicture(7, 3, bits, 5);
        const PixelValue mask = bits < 32 ? (PixelValue{1} << bits) - 1 : 0xFFFFFFFF;
        // One pixel changes and its neighbours in the same bytes do not.
        for (std::int32_t x = 0; x < 7; ++x) {
            const PixelValue left = DibGetPixel(*dib, x - 1, 1), right = DibGetPixel(*dib, x + 1, 1);
            for (const PixelValue value : {0x1F2F3F5FU, 0x1F2F3F5EU, 0U}) {
                DibSetPixel(*dib, x, 1, value);
                EXPECT_EQ(DibGetPixel(*dib, x, 1), bits == 1 ? PixelValue{value != 0} : value & mask);
            }
            EXPECT_EQ(DibGetPixel(*dib, x - 1, 1), left);
            EXPECT_EQ(DibGetPixel(*dib, x + 1, 1), right);
            DibSetPixel(*dib, x, 1, right == kNoPixel ? left : right);
        }
        const std::vector<std::uint8_t> before = BytesOf(dib);
        for (const auto& [x, y] : {std::pair{-1, 0}, {7, 0}, {0, -1}, {0, 3}, {INT32_MIN, INT32_MAX}}) {
            EXPECT_EQ(DibGetPixel(*dib, x, y), kNoPixel);
            DibSetPixel(*dib, x, y, 1);
        }
        DibSetPixel(*dib, 2, 2, kNoPixel);
        EXPECT_EQ(BytesOf(dib), before);
    }
    OwnedDib dib = DibCreate(2, 1, nullptr, 24);
    DibSetPixel(*dib, 1, 0, 0x00102030);
    EXPECT_EQ(LoadColour(dib.Rows().Row(0) + 3), 0x00102030U);
    EXPECT_EQ(dib.Rows().Row(0)[3], 0x10) << "blue comes first";
}

TEST(Dib, PaletteAndQuery) {
    Palette palette{};
    palette[1] = {10, 20, 30};
    palette[255] = {1, 2, 3};
    for (const auto& [bits, colours] : {std::pair{1, 2}, {4, 16}, {8, 256}, {24, 0}}) {
        SCOPED_TRACE(bits);
        const OwnedDib dib = DibCreate(3, 2, &palette, bits);
        Palette read;
        read.fill({9, 9, 9});
        EXPECT_EQ(DibGetPalette(*dib, read), colours);
        EXPECT_EQ(read[1], (colours > 0 ? Rgb{10, 20, 30} : Rgb{}));
        EXPECT_EQ(read[255], (colours == 256 ? Rgb{1, 2, 3} : Rgb{}));
        std::int32_t width = 0, height = 0;
        int depth = 0;
        EXPECT_TRUE(DibQuery(dib.Get(), &width, &height, &depth, nullptr));
        EXPECT_EQ(std::tuple(width, height, depth), std::tuple(3, 2, bits));
        EXPECT_TRUE(DibQuery(dib.Get(), nullptr, nullptr, nullptr, nullptr));
    }
    EXPECT_FALSE(DibQuery(0, nullptr, nullptr, nullptr, nullptr));
}

/// Copying is pixel by pixel with the accessors' clipping, whatever the way it is done.
TEST(Dib, CopyRectIsTheAccessors) {
    for (const int bits : kDepths) {
        constexpr std::array<int, 6> kCopies[] = {{0, 0, 0, 0, 61, 47},
                                                  {-3, -2, 1, 1, 20, 9},
                                                  {5, 3, -4, -6, 70, 70},
                                                  {50, 40, 3, 2, 90, 3},
                                                  {2, 1, 60, 46, 5, 5},
                                                  {0, 0, 0, 0, -4, 5},
                                                  {0, 0, 0, 0, 0, 0},
                                                  {INT32_MAX, 0, 0, 0, INT32_MAX, 1},
                                                  {0, 0, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}};
        for (const auto [dx, dy, sx, sy, w, h] : kCopies) {
            SCOPED_TRACE(testing::Message() << bits << " bits to " << dx << "," << dy);
            OwnedDib source = NoisePicture(61, 47, bits, 1);
            OwnedDib fast = NoisePicture(33, 29, bits, 2), plain = NoisePicture(33, 29, bits, 2);
            // At 32 bits white with a full top byte reads as no pixel, and is not copied.
            std::memset(source.Rows().Row(5), 0xFF, 5);
            DibCopyRect(*fast, dx, dy, *source, sx, sy, w, h);
            for (std::int32_t i = 0; i < 33 * 29; ++i) {
                const std::int64_t c = std::int64_t{i % 33} - dx, r = std::int64_t{i / 33} - dy;
                if (c >= 0 && c < w && r >= 0 && r < h)
                    DibSetPixel(*plain, i % 33, i / 33, DibGetPixel(*source, sx + c, sy + r));
            }
            EXPECT_EQ(BytesOf(fast), BytesOf(plain));
        }
    }
    // Within one picture the order of the pixels shows: the first column runs along the row.
    OwnedDib dib = NoisePicture(7, 1, 24, 3);
    const PixelValue first = DibGetPixel(*dib, 0, 0);
    DibCopyRect(*dib, 1, 0, *dib, 0, 0, 6, 1);
    EXPECT_EQ(DibGetPixel(*dib, 6, 0), first);
}

TEST(Dib, FillLeavesPaddingAlone) {
    OwnedDib filled = PlainPicture(7, 5, 0x123456), plain = DibCreate(7, 5, nullptr, 24);
    for (std::int32_t i = 0; i < 7 * 5; ++i)
        DibSetPixel(*plain, i % 7, i / 7, 0x123456);
    DibFill(*filled, kNoPixel);
    EXPECT_EQ(BytesOf(filled), BytesOf(plain));
}

TEST(FrameList, GrowsByOneAndOwnsItsPictures) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    FrameList list{};
    FrameRecord record{};
    record.delay = 42;
    EXPECT_FALSE(FrameListGet(list, 0, record));
    FrameListRelease(list);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(FrameListAddImage(list, NoisePicture(3, 3, 24, 1), i));
        EXPECT_EQ(GlobalBytes(list.handle) / 40, static_cast<std::size_t>(i) + 1);
    }
    for (const std::int32_t index : {-1, 5, 6})
        EXPECT_FALSE(FrameListGet(list, index, record));
    EXPECT_EQ(record.delay, 42);
    ASSERT_TRUE(FrameListGet(list, 3, record));
    EXPECT_EQ(record.delay, 3);
    EXPECT_EQ(record.transparentIndex, -1);
    EXPECT_EQ(record.mask, 0U);
    GlobalLocked<FrameRecord>(list.handle)->mask = DibCreate(3, 3, nullptr, 1).Release();

    // An append that cannot grow leaves the list as it was, and frees the picture.
    FrameList empty{};
    for (FrameList* one : {&list, &empty}) {
        const FrameList before = *one;
        OwnedDib spare = NoisePicture(3, 3, 24, 1);
        allocation_hooks::FailNth(1);
        EXPECT_FALSE(FrameListAddImage(*one, std::move(spare), 1));
        allocation_hooks::FailNth(0);
        EXPECT_EQ(std::tuple(+one->count, +one->handle), std::tuple(+before.count, +before.handle));
        EXPECT_FALSE(FrameListAddImage(*one, OwnedDib(), 1));
    }
    FrameListRelease(list);
    EXPECT_EQ(list.handle, 0U);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

} // namespace
} // namespace lumafold::test
