#include "colour/supercompression.h"

#include <gtest/gtest.h>

#include "image/resample.h"
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

    FrameRecord record{};
};

std::pair<std::int32_t, std::int32_t> Size(DibHandle picture) {
    std::pair<std::int32_t, std::int32_t> size;
    DibQuery(picture, &size.first, &size.second, nullptr, nullptr);
    return size;
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
            DibSetPixel(*dib, x, y, DibGetPixel(*dib, x, y) ^ bit);
        }
    }
    return copy;
}

/// Pixel by pixel through the accessors: what `frame`, marked after `before` was shown, must have become.
void ExpectMarked(const Frame& frame, DibHandle before, DibHandle reference) {
    EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(kMatte));
    const auto [width, height] = Size(before);
    ASSERT_EQ(Size(frame.record.mask), std::pair(width, height));
    for (std::int32_t i = 0; i < width * height; ++i) {
        const std::int32_t x = i % width, y = i / width;
        const PixelValue now = PixelAt(frame.record.image, x, y), then = PixelAt(before, x, y);
        ASSERT_EQ(PixelAt(frame.record.mask, x, y), now == then ? 1U : 0U) << x << ',' << y;
        ASSERT_EQ(PixelAt(reference, x, y), now == kNoPixel ? then : now) << x << ',' << y;
    }
}

/// The same for `frame` painted, which showed `before`.
void ExpectPainted(const Frame& frame, DibHandle before, PixelValue painted) {
    EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(painted));
    const auto [width, height] = Size(before);
    for (std::int32_t i = 0; i < width * height; ++i) {
        const std::int32_t x = i % width, y = i / width;
        const bool marked = PixelAt(frame.record.mask, x, y) == 1;
        ASSERT_EQ(PixelAt(frame.record.image, x, y), marked ? painted : PixelAt(before, x, y));
    }
    int bits = 0;
    Palette table, expected;
    DibQuery(before, nullptr, nullptr, &bits, &expected);
    DibQuery(frame.record.image, nullptr, nullptr, nullptr, &table);
    if (bits <= 8) expected[painted] = {0xC0, 0x80, 0x40};
    EXPECT_EQ(table, expected);
}

TEST(Supercompression, MarksAndPaintsWhatStaysTheSame) {
    std::uint32_t seed = 0;
    for (const auto& [width, height] :
         {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}, {8, 3}, {16, 2}, {0, 4}}) {
        for (const auto& [bits, slot] :
             {std::pair{24, -1}, {24, 9}, {32, 3}, {8, 255}, {8, 3}, {4, 15}, {4, 0}, {1, 1}, {1, 0}}) {
            SCOPED_TRACE(testing::Message()
                         << width << 'x' << height << ", " << bits << " bits, slot " << slot);
            OwnedDib reference;
            Frame first(NoisePicture(width, height, bits, ++seed));
            ASSERT_TRUE(MarkUnchanged(reference, first.record, kMatte));
            EXPECT_EQ(first.record.mask, 0U);
            EXPECT_EQ(first.record.transparentIndex, -1);
            // Frames of other sizes, too, stay within bounds.
            for (const auto& [wider, higher] : {std::pair{0, 0}, {0, 0}, {3, 2}, {-1, -1}, {3, -1}}) {
                const OwnedDib before(GlobalDuplicate(reference.Get())),
                    changed = Changed(before.Get(), ++seed);
                const Rect rect{0, 0, std::max(width + wider, 0), std::max(height + higher, 0)};
                Frame frame{OwnedDib(DibCropRect(changed.Get(), rect, 0))};
                const OwnedDib whole(GlobalDuplicate(frame.record.image));
                ASSERT_TRUE(MarkUnchanged(reference, frame.record, kMatte));
                ASSERT_NO_FATAL_FAILURE(ExpectMarked(frame, before.Get(), reference.Get()));
                ASSERT_TRUE(PaintUnchanged(frame.record, slot, kMatte));
                const PixelValue painted = bits > 8 ? 0 : static_cast<PixelValue>(slot);
                ASSERT_NO_FATAL_FAILURE(ExpectPainted(frame, whole.Get(), painted));
            }
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
