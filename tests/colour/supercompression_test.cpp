#include "colour/supercompression.h"

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

using test::NoisePicture;
using test::PixelAt;

constexpr PixelValue kMatte = 0x4080C0;

/// A frame whose pictures free themselves.
struct Frame {
    explicit Frame(OwnedDib image) {
        record.image = image.Release();
        record.transparentIndex = -1;
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() { FrameRecordRelease(record); }

    PixelValue Mark(std::int32_t x, std::int32_t y) const { return PixelAt(record.mask, x, y); }

    FrameRecord record{};
};

std::pair<std::int32_t, std::int32_t> Size(DibHandle picture) {
    std::pair<std::int32_t, std::int32_t> size;
    DibQuery(picture, &size.first, &size.second, nullptr, nullptr);
    return size;
}

template <typename Visit>
void ForEachPixel(const Frame& frame, Visit visit) {
    const auto [width, height] = Size(frame.record.image);
    for (std::int32_t i = 0; i < width * height && !testing::Test::HasFatalFailure(); ++i)
        visit(i % width, i / width);
}

/// The picture with some pixels changed, now and then by one level only, now and then all of a row.
OwnedDib Changed(DibHandle picture, std::uint32_t seed) {
    OwnedDib copy(GlobalDuplicate(picture));
    const LockedDib dib(copy.Get());
    Random random(seed);
    for (std::int32_t y = 0; y < dib->biHeight; ++y) {
        const std::uint32_t rarity = 1 + random.Draw() % 5;
        for (std::int32_t x = 0; x < dib->biWidth; ++x) {
            if ((random.Draw() >> 5) % rarity != 0) continue;
            const PixelValue bit = 1U << (random.Draw() >> 5) % std::min<unsigned>(dib->biBitCount, 24);
            DibSetPixel(dib.Get(), x, y, DibGetPixel(dib.Get(), x, y) ^ bit);
        }
    }
    return copy;
}

TEST(Supercompression, MarksExactlyWhatStaysTheSame) {
    std::uint32_t seed = 0;
    for (const auto& [width, height] :
         {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}, {8, 3}, {16, 2}, {0, 4}}) {
        for (const int bits : {24, 8, 4, 1, 32}) {
            SCOPED_TRACE(testing::Message() << width << 'x' << height << ", " << bits << " bits");
            OwnedDib reference;
            Frame first(NoisePicture(width, height, bits, ++seed));
            ASSERT_TRUE(MarkUnchanged(reference, first.record, kMatte));
            EXPECT_EQ(first.record.mask, 0U);
            EXPECT_EQ(first.record.transparentIndex, -1);
            OwnedDib before(GlobalDuplicate(first.record.image));
            for (int i = 0; i < 3; ++i) {
                Frame frame(Changed(before.Get(), ++seed));
                ASSERT_TRUE(MarkUnchanged(reference, frame.record, kMatte));
                EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(kMatte));
                ASSERT_EQ(Size(frame.record.mask), std::pair(width, height));
                ForEachPixel(frame, [&](std::int32_t x, std::int32_t y) {
                    const PixelValue now = PixelAt(frame.record.image, x, y);
                    ASSERT_EQ(frame.Mark(x, y), now == PixelAt(before.Get(), x, y) ? 1U : 0U)
                        << x << ',' << y;
                    ASSERT_EQ(PixelAt(reference.Get(), x, y), now);
                });
                before = OwnedDib(GlobalDuplicate(frame.record.image));
            }
        }
    }
}

TEST(Supercompression, MarksAndPaintsFramesOfOtherSizesWithinBounds) {
    OwnedDib reference;
    Frame large(test::PlainPicture(9, 4, 7)), small(test::PlainPicture(8, 3, 7)),
        wide(test::PlainPicture(12, 2, 7));
    ASSERT_TRUE(MarkUnchanged(reference, large.record, kMatte));
    for (Frame* frame : {&small, &wide}) {
        ASSERT_TRUE(MarkUnchanged(reference, frame->record, kMatte));
        const auto [width, height] = Size(frame->record.image);
        ASSERT_EQ(Size(frame->record.mask).first, 9);
        for (int i = 0; i < 36; ++i)
            EXPECT_EQ(frame->Mark(i % 9, i / 9), i % 9 < width && i / 9 < height ? 1U : 0U);
        EXPECT_TRUE(PaintUnchanged(frame->record, -1, kMatte));
        EXPECT_EQ(PixelAt(frame->record.image, 7, 1), 0U);
    }
    EXPECT_EQ(PixelAt(wide.record.image, 9, 1), 7U);
}

TEST(Supercompression, PaintsMarkedPixelsOnly) {
    std::uint32_t seed = 0;
    for (const auto& [bits, slot] :
         {std::pair{8, 255}, {8, 3}, {4, 15}, {4, 0}, {1, 1}, {1, 0}, {24, -1}, {24, 9}}) {
        const PixelValue painted = bits == 24 ? 0 : static_cast<PixelValue>(slot);
        for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, slot " << slot << ", " << width << " wide");
            Frame frame(NoisePicture(width, height, bits, ++seed));
            frame.record.mask = NoisePicture(width, height, 1, ++seed).Release();
            const OwnedDib before(GlobalDuplicate(frame.record.image));
            Palette table, expected;
            DibQuery(before.Get(), nullptr, nullptr, nullptr, &expected);
            if (bits <= 8) expected[painted] = {0xC0, 0x80, 0x40};
            ASSERT_TRUE(PaintUnchanged(frame.record, slot, kMatte));
            ForEachPixel(frame, [&](std::int32_t x, std::int32_t y) {
                ASSERT_EQ(PixelAt(frame.record.image, x, y),
                          frame.Mark(x, y) != 0 ? painted : PixelAt(before.Get(), x, y));
            });
            DibQuery(frame.record.image, nullptr, nullptr, nullptr, &table);
            EXPECT_EQ(table, expected);
            EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(painted));
            EXPECT_NE(frame.record.mask, 0U);
        }
    }
}

TEST(Supercompression, LeavesFramesWithoutSlotOrMaskAlone) {
    Frame frame(NoisePicture(7, 5, 8, 1));
    const std::uint64_t before = DibChecksum(frame.record.image);
    ASSERT_TRUE(PaintUnchanged(frame.record, 7, kMatte));
    EXPECT_EQ(frame.record.transparentIndex, -1);
    frame.record.mask = NoisePicture(7, 5, 1, 2).Release();
    frame.record.transparentIndex = static_cast<std::int32_t>(kMatte);
    EXPECT_FALSE(PaintUnchanged(frame.record, 256, kMatte));
    ASSERT_TRUE(PaintUnchanged(frame.record, -1, kMatte));
    EXPECT_EQ(frame.record.transparentIndex, -1);
    EXPECT_EQ(DibChecksum(frame.record.image), before);
}

TEST(Supercompression, FailsCleanlyWhereverMemoryEnds) {
    const auto blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    {
        OwnedDib reference;
        Frame first(NoisePicture(7, 5, 24, 1)), second(NoisePicture(7, 5, 24, 2)), gone{OwnedDib()};
        for (Frame* frame : {&first, &second}) {
            if (frame == &second) {
                ASSERT_TRUE(MarkUnchanged(reference, first.record, kMatte));
            }
            allocation_hooks::FailNth(1);
            EXPECT_FALSE(MarkUnchanged(reference, frame->record, kMatte));
            EXPECT_TRUE(allocation_hooks::HasFailed());
            allocation_hooks::FailNth(0);
            EXPECT_EQ(frame->record.mask, 0U);
            EXPECT_EQ(frame->record.transparentIndex, -1);
        }
        EXPECT_EQ(DibChecksum(reference.Get()), DibChecksum(first.record.image));
        EXPECT_FALSE(MarkUnchanged(reference, gone.record, kMatte));
        gone.record.mask = NoisePicture(7, 5, 1, 2).Release();
        EXPECT_FALSE(PaintUnchanged(gone.record, 1, kMatte));
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
    }
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

} // namespace
} // namespace lumafold
