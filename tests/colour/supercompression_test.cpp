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

    FrameRecord record{};
};

/// Some pixels change, now and then by one level only, now and then all of a row.
OwnedDib Changed(const OwnedDib& picture, std::uint32_t seed) {
    Random random(seed);
    return test::PictureOf(picture->biWidth, picture->biHeight, 24, [&, rarity = 1U](int x, int y) mutable {
        if (x == 0) rarity = 1 + random.Draw() % 5;
        const PixelValue value = DibGetPixel(*picture, x, y);
        return (random.Draw() >> 5) % rarity == 0 ? value ^ 1U << (random.Draw() >> 5) % 24 : value;
    });
}

TEST(Supercompression, MarksAndPaintsWhatStaysTheSame) {
    std::uint32_t seed = 0;
    for (const auto& [width, height] :
         {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}, {8, 3}, {16, 2}, {0, 4}}) {
        for (const auto& [bits, slot] :
             {std::pair{24, 9}, {24, -1}, {8, 255}, {8, 3}, {4, 15}, {4, 0}, {1, 1}}) {
            SCOPED_TRACE(testing::Message()
                         << width << 'x' << height << ", " << bits << " bits, slot " << slot);
            const OwnedDib before = NoisePicture(width, height, 24, ++seed);
            Frame frame(Changed(before, ++seed));
            ASSERT_TRUE(MarkUnchanged(before.Get(), frame.record, kMatte));
            EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(kMatte));
            const OwnedDib changed(std::exchange(frame.record.image, DibHandle{0}));
            OwnedDib reduced = bits == 24 ? DibCopy(*changed) : NoisePicture(width, height, bits, ++seed);
            const OwnedDib whole = DibCopy(*reduced);
            frame.record.image = reduced.Release();
            ASSERT_TRUE(PaintUnchanged(frame.record, slot, kMatte));
            const PixelValue painted = bits == 24 ? 0 : static_cast<PixelValue>(slot);
            EXPECT_EQ(frame.record.transparentIndex, static_cast<std::int32_t>(painted));
            for (std::int32_t i = 0; i < width * height; ++i) {
                const std::int32_t x = i % width, y = i / width;
                const bool same = DibGetPixel(*before, x, y) == DibGetPixel(*changed, x, y);
                ASSERT_EQ(PixelAt(frame.record.mask, x, y), same ? 1U : 0U) << x << ',' << y;
                ASSERT_EQ(PixelAt(frame.record.image, x, y), same ? painted : DibGetPixel(*whole, x, y));
            }
            Palette table, expected;
            if (DibGetPalette(*whole, expected) > 0) expected[painted] = {0xC0, 0x80, 0x40};
            DibQuery(frame.record.image, nullptr, nullptr, nullptr, &table);
            EXPECT_EQ(table, expected);
        }
    }
}

TEST(Supercompression, LeavesFramesWithoutSlotOrMaskAlone) {
    Frame frame(NoisePicture(7, 5, 8, 1));
    const std::uint64_t before = DibChecksum(frame.record.image);
    ASSERT_TRUE(PaintUnchanged(frame.record, 7, kMatte));
    EXPECT_EQ(frame.record.transparentIndex, -1);
    frame.record.mask = NoisePicture(7, 5, 1, 2).Release();
    EXPECT_FALSE(PaintUnchanged(frame.record, 256, kMatte));
    ASSERT_TRUE(PaintUnchanged(frame.record, -1, kMatte));
    EXPECT_EQ(frame.record.transparentIndex, -1);
    EXPECT_EQ(DibChecksum(frame.record.image), before);
    // A mask of another size is painted as far as it goes.
    Frame wide(DibCreate(9, 2, nullptr, 8));
    wide.record.mask = NoisePicture(7, 5, 1, 2).Release();
    ASSERT_TRUE(PaintUnchanged(wide.record, 5, kMatte));
    for (std::int32_t x = 0; x < 9; ++x)
        EXPECT_EQ(PixelAt(wide.record.image, x, 1), PixelAt(wide.record.mask, x, 1) == 1 ? 5U : 0U);
}

TEST(Supercompression, RefusesOtherSizesAndDepthsAndFailsWithoutMemory) {
    const OwnedDib before = NoisePicture(7, 5, 24, 1);
    const auto expectRefused = [&](DibHandle earlier, OwnedDib picture) {
        Frame frame(std::move(picture));
        EXPECT_FALSE(MarkUnchanged(earlier, frame.record, kMatte));
        EXPECT_EQ(frame.record.mask, 0U);
        EXPECT_EQ(frame.record.transparentIndex, -1);
    };
    expectRefused(before.Get(), NoisePicture(7, 6, 24, 2));
    expectRefused(before.Get(), NoisePicture(6, 5, 24, 2));
    expectRefused(before.Get(), NoisePicture(7, 5, 8, 2));
    expectRefused(before.Get(), OwnedDib());
    expectRefused(0, NoisePicture(7, 5, 24, 2));
    OwnedDib picture = NoisePicture(7, 5, 24, 2);
    allocation_hooks::FailNth(1);
    expectRefused(before.Get(), std::move(picture));
    EXPECT_TRUE(allocation_hooks::HasFailed());
    allocation_hooks::FailNth(0);
    Frame gone{OwnedDib()};
    gone.record.mask = NoisePicture(7, 5, 1, 2).Release();
    EXPECT_FALSE(PaintUnchanged(gone.record, 1, kMatte));
}

} // namespace
} // namespace lumafold
