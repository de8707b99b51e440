#include "image/dib.h"

#include <gtest/gtest.h>

#include "image/frame_list.h"
#include "image/row_view.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

struct Size {
    std::int32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
constexpr int kDepths[] = {1, 4, 8, 24, 32};

std::vector<std::uint8_t> BytesOf(DibHandle dib) {
    const GlobalLocked<const std::uint8_t> block(dib);
    return {block.Get(), block.Get() + GlobalBytes(dib)};
}

TEST(Dib, HasThePackedLayout) {
    // requested bits, depth made, table entries, stride at 7 pixels
    const int cases[][4] = {{0, 32, 1, 28},  {1, 1, 2, 4},   {2, 4, 16, 4},  {3, 4, 16, 4},
                            {5, 8, 256, 8},  {8, 8, 256, 8}, {9, 24, 0, 24}, {16, 24, 0, 24},
                            {24, 24, 0, 24}, {25, 32, 1, 28}};
    for (const auto& [asked, bits, colours, stride] : cases) {
        SCOPED_TRACE(asked);
        const OwnedDib dib(DibCreate(7, 3, nullptr, asked));
        const LockedDib header(dib.Get());
        ASSERT_TRUE(header);
        EXPECT_EQ(header->biSize, 40U);
        EXPECT_EQ(header->biPlanes, 1);
        EXPECT_EQ(header->biBitCount, bits);
        EXPECT_EQ(header->biClrUsed, static_cast<std::uint32_t>(colours));
        EXPECT_EQ(header->biClrImportant, static_cast<std::uint32_t>(colours));
        EXPECT_EQ(header->biSizeImage, static_cast<std::uint32_t>(stride * 3));
        EXPECT_GE(GlobalBytes(dib.Get()), static_cast<std::size_t>(40 + colours * 4 + stride * 3));
        // Top-down pictures, bottom-up rows: the first pixel is the first of the last stored row.
        DibSetPixel(*header, 0, 0, 1);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(header.Get());
        const std::size_t table = bits <= 8 ? static_cast<std::size_t>(colours) * 4 : 0;
        const std::size_t channel = bits >= 24 ? 2 : 0; // red is the third byte
        EXPECT_NE(bytes[40 + table + 2 * static_cast<std::size_t>(stride) + channel], 0);
    }
    for (const Size size :
         {Size{-1, 5}, Size{5, -1}, Size{1 << 20, 1 << 20}, Size{INT32_MAX, 1}, Size{1, INT32_MAX}}) {
        EXPECT_EQ(DibCreate(size.width, size.height, nullptr, 24), 0U);
    }
}

TEST(Dib, AccessorsPackEveryDepth) {
    for (const int bits : kDepths) {
        SCOPED_TRACE(bits);
        const OwnedDib dib = NoisePicture(7, 3, bits, 5);
        const LockedDib d(dib.Get());
        const PixelValue mask = bits < 32 ? (PixelValue{1} << bits) - 1 : 0xFFFFFFFF;
        // One pixel changes and its neighbours in the same bytes do not.
        for (std::int32_t x = 0; x < 7; ++x) {
            const PixelValue left = DibGetPixel(*d, x - 1, 1), right = DibGetPixel(*d, x + 1, 1);
            DibSetPixel(*d, x, 1, 0x1F2F3F5F);
            EXPECT_EQ(DibGetPixel(*d, x, 1), bits == 1 ? 1U : 0x1F2F3F5F & mask);
            DibSetPixel(*d, x, 1, 0);
            EXPECT_EQ(DibGetPixel(*d, x, 1), 0U);
            EXPECT_EQ(DibGetPixel(*d, x - 1, 1), left);
            EXPECT_EQ(DibGetPixel(*d, x + 1, 1), right);
            DibSetPixel(*d, x, 1, right == kNoPixel ? left : right);
        }
        const std::vector<std::uint8_t> before = BytesOf(dib.Get());
        for (const auto& [x, y] : {std::pair{-1, 0}, {7, 0}, {0, -1}, {0, 3}, {INT32_MIN, INT32_MAX}}) {
            EXPECT_EQ(DibGetPixel(*d, x, y), kNoPixel);
            DibSetPixel(*d, x, y, 1);
        }
        DibSetPixel(*d, 2, 2, kNoPixel);
        EXPECT_EQ(BytesOf(dib.Get()), before);
    }
    const OwnedDib dib(DibCreate(2, 1, nullptr, 24));
    const LockedDib d(dib.Get());
    DibSetPixel(*d, 1, 0, 0x00102030);
    const std::uint8_t* pixel = RowView(*d).Row(0) + 3;
    EXPECT_EQ(pixel[0], 0x10);
    EXPECT_EQ(pixel[1], 0x20);
    EXPECT_EQ(pixel[2], 0x30);
}

TEST(Dib, PaletteAndQuery) {
    Palette palette{};
    palette[1] = {10, 20, 30};
    palette[255] = {1, 2, 3};
    for (const auto& [bits, colours] : {std::pair{1, 2}, {4, 16}, {8, 256}, {24, 0}}) {
        SCOPED_TRACE(bits);
        const OwnedDib dib(DibCreate(3, 2, &palette, bits));
        const LockedDib d(dib.Get());
        Palette read;
        read.fill({9, 9, 9});
        EXPECT_EQ(DibGetPalette(*d, read), colours);
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
        for (const auto [dx, dy, sx, sy, w, h] : {std::array{0, 0, 0, 0, 61, 47},
                                                  {-3, -2, 1, 1, 20, 9},
                                                  {5, 3, -4, -6, 70, 70},
                                                  {50, 40, 3, 2, 90, 3},
                                                  {2, 1, 60, 46, 5, 5},
                                                  {0, 0, 0, 0, -4, 5},
                                                  {0, 0, 0, 0, 0, 0},
                                                  {INT32_MAX, 0, 0, 0, INT32_MAX, 1},
                                                  {0, 0, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}}) {
            SCOPED_TRACE(testing::Message() << bits << " bits to " << dx << "," << dy);
            const OwnedDib source = NoisePicture(61, 47, bits, 1);
            const OwnedDib fast = NoisePicture(33, 29, bits, 2), plain = NoisePicture(33, 29, bits, 2);
            const LockedDib s(source.Get()), f(fast.Get()), p(plain.Get());
            // At 32 bits white with a full top byte reads as no pixel, and is not copied.
            std::memset(RowView(*s).Row(5), 0xFF, 5);
            DibCopyRect(*f, dx, dy, *s, sx, sy, w, h);
            for (std::int32_t y = 0; y < 29; ++y) {
                for (std::int32_t x = 0; x < 33; ++x) {
                    const std::int64_t c = std::int64_t{x} - dx, r = std::int64_t{y} - dy;
                    if (c < 0 || c >= w || r < 0 || r >= h) continue;
                    const std::int64_t fromX = sx + c, fromY = sy + r;
                    if (fromX < 0 || fromX > 60 || fromY < 0 || fromY > 46) continue;
                    DibSetPixel(*p, x, y,
                                DibGetPixel(*s, static_cast<int>(fromX), static_cast<int>(fromY)));
                }
            }
            EXPECT_EQ(BytesOf(fast.Get()), BytesOf(plain.Get()));
        }
    }
    // Within one picture the order of the pixels shows: the first column runs along the row.
    const OwnedDib dib = NoisePicture(7, 1, 24, 3);
    const LockedDib d(dib.Get());
    const PixelValue first = DibGetPixel(*d, 0, 0);
    DibCopyRect(*d, 1, 0, *d, 0, 0, 6, 1);
    EXPECT_EQ(DibGetPixel(*d, 6, 0), first);
}

TEST(Dib, FillLeavesPaddingAlone) {
    for (const Size size : kSizes) {
        const OwnedDib filled = PlainPicture(size.width, size.height, 0x123456);
        const OwnedDib plain(DibCreate(size.width, size.height, nullptr, 24));
        const LockedDib p(plain.Get());
        for (std::int32_t y = 0; y < size.height; ++y) {
            for (std::int32_t x = 0; x < size.width; ++x) {
                DibSetPixel(*p, x, y, 0x123456);
            }
        }
        EXPECT_EQ(BytesOf(filled.Get()), BytesOf(plain.Get()));
        DibFill(*p, kNoPixel);
        EXPECT_EQ(BytesOf(filled.Get()), BytesOf(plain.Get()));
    }
}

TEST(FrameList, GrowsByOneAndOwnsItsPictures) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    FrameList list{};
    FrameRecord record{};
    record.delay = 42;
    EXPECT_FALSE(FrameListGet(list, 0, record));
    FrameListRelease(list);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(FrameListAddImage(list, NoisePicture(3, 3, 24, 1).Release(), i));
        EXPECT_EQ(GlobalBytes(list.handle) / 40, static_cast<std::size_t>(i) + 1);
    }
    for (const std::int32_t index : {-1, 5, 6}) {
        EXPECT_FALSE(FrameListGet(list, index, record));
        EXPECT_FALSE(FrameListPut(list, index, record));
    }
    EXPECT_EQ(record.delay, 42);
    ASSERT_TRUE(FrameListGet(list, 3, record));
    EXPECT_EQ(record.delay, 3);
    EXPECT_EQ(record.transparentIndex, -1);
    EXPECT_EQ(record.mask, 0U);
    record.mask = DibCreate(3, 3, nullptr, 1);
    EXPECT_TRUE(FrameListPut(list, 3, record));

    // An append that cannot grow leaves the list and the picture as they were.
    OwnedDib spare = NoisePicture(3, 3, 24, 1);
    FrameList empty{};
    for (FrameList* one : {&list, &empty}) {
        const FrameList before = *one;
        allocation_hooks::FailNth(1);
        EXPECT_FALSE(FrameListAddImage(*one, spare.Get(), 1));
        allocation_hooks::FailNth(0);
        EXPECT_EQ(one->count, before.count);
        EXPECT_EQ(one->handle, before.handle);
    }
    FrameListRelease(list);
    EXPECT_EQ(list.handle, 0U);
    EXPECT_EQ(list.count, 0);
    spare = OwnedDib();
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

} // namespace
} // namespace lumafold::test
