#include "image/import.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// How an outside program packs a picture.
struct Packing {
    const char* name;
    std::uint32_t header;
    int bits;
    bool topDown = false;
    std::uint32_t compression = 0;
    std::uint32_t told = 0;             ///< biClrUsed
    std::vector<std::uint32_t> masks{}; ///< red, green, blue, whatever else
    std::uint32_t tableEntries = 0;     ///< what really lies there
};

void Put(Bytes& bytes, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i, value >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(value));
}

std::uint32_t Scaled(unsigned channel, std::uint32_t mask) {
    const std::uint32_t unit = mask & (~mask + 1);
    return unit == 0 ? 0 : channel * (mask / unit) / 255 * unit;
}

/// `picture` as a block of that packing. Deep pixels have their spare bits set, which mean nothing.
Bytes Pack(const Packing& packing, const OwnedDib& dib) {
    const std::int32_t width = dib->biWidth, height = dib->biHeight;
    Bytes bytes;
    Put(bytes, packing.header, 4);
    const bool core = packing.header == 12;
    Put(bytes, static_cast<std::uint32_t>(width), core ? 2 : 4);
    Put(bytes, static_cast<std::uint32_t>(packing.topDown ? -height : height), core ? 2 : 4);
    Put(bytes, 1, 2);
    Put(bytes, static_cast<std::uint32_t>(packing.bits), 2);
    if (!core) {
        for (const std::uint32_t field : {packing.compression, 0U, 2835U, 2835U, packing.told, 0U})
            Put(bytes, field, 4);
        for (const std::uint32_t mask : packing.masks)
            Put(bytes, mask, 4);
        bytes.resize(std::max<std::size_t>(bytes.size(), packing.header), 0x5A);
    }
    Palette palette;
    DibGetPalette(*dib, palette);
    for (std::uint32_t i = 0; i < packing.tableEntries; ++i) {
        const Rgb entry = palette[i % 256];
        Put(bytes, MakeColour(entry.blue, entry.green, entry.red), core ? 3 : 4);
    }
    std::vector<std::uint32_t> masks = packing.masks;
    if (masks.empty() && packing.bits == 16) masks = {0x7C00, 0x03E0, 0x001F};
    if (masks.empty()) masks = {0xFF0000, 0xFF00, 0xFF};
    for (std::int32_t row = 0; row < height; ++row) {
        const std::size_t start = bytes.size();
        std::uint32_t partial = 0;
        int filled = 0;
        for (std::int32_t x = 0; x < width; ++x) {
            PixelValue value = DibGetPixel(*dib, x, packing.topDown ? row : height - 1 - row);
            if (packing.bits > 8) {
                value = Scaled(RedOf(value), masks[0]) | Scaled(GreenOf(value), masks[1]) |
                        Scaled(BlueOf(value), masks[2]) | ~(masks[0] | masks[1] | masks[2]);
                Put(bytes, value, packing.bits / 8);
                continue;
            }
            partial = partial << packing.bits | value;
            if ((filled += packing.bits) < 8) continue;
            bytes.push_back(static_cast<std::uint8_t>(partial));
            partial = 0;
            filled = 0;
        }
        if (filled > 0) bytes.push_back(static_cast<std::uint8_t>(partial << (8 - filled)));
        while ((bytes.size() - start) % 4 != 0)
            bytes.push_back(0xEE);
    }
    return bytes;
}

DibHandle Block(const Bytes& bytes) {
    const GlobalHandle handle = GlobalCreate(GlobalKind::Movable, bytes.size());
    const GlobalLocked<std::uint8_t> block(handle);
    std::copy(bytes.begin(), bytes.end(), block.Get());
    return handle;
}

const Packing kPackings[] = {
    {"sound 1", 40, 1, false, 0, 0, {}, 2},
    {"sound 4", 40, 4, false, 0, 16, {}, 16},
    {"sound 8", 40, 8, false, 0, 0, {}, 256},
    {"sound 24", 40, 24},
    {"core 1", 12, 1, false, 0, 0, {}, 2},
    {"core 8", 12, 8, false, 0, 0, {}, 256},
    {"core 24", 12, 24},
    {"top-down 4", 40, 4, true, 0, 0, {}, 16},
    {"top-down 24", 40, 24, true},
    {"V4 8", 108, 8, false, 0, 0, {}, 256},
    {"V5 24", 124, 24, true},
    {"short table", 40, 8, false, 0, 200, {}, 200},
    // The count of used entries does not move rows that lie behind a whole table.
    {"sound, few used", 40, 8, false, 0, 200, {}, 256},
    {"sound, two of sixteen used", 40, 4, false, 0, 2, {}, 16},
    {"sound, more used than there are", 40, 4, false, 0, 30, {}, 16},
    {"sound 24, some used", 40, 24, false, 0, 7},
    {"555", 40, 16},
    {"565 behind the header", 40, 16, true, 3, 0, {0xF800, 0x07E0, 0x001F}},
    {"444 in V4", 108, 16, false, 3, 0, {0x0F00, 0x00F0, 0x000F}},
    {"32", 40, 32},
    {"32, some used", 124, 32, true, 0, 9},
    {"32 by masks", 40, 32, true, 3, 2, {0xFF, 0xFF00, 0xFF0000}},
    {"32 by masks in V5", 124, 32, false, 3, 0, {0xFF000000, 0x00FF0000, 0x0000FF00, 0xFF}},
    {"32 by four masks", 40, 32, false, 6, 0, {0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000}},
};

/// A colour that survived channels of `packing`, at most one level off what rounding may do.
void ExpectColour(PixelValue before, PixelValue after, const Packing& packing) {
    const int most = packing.bits == 16 ? 17 : packing.masks.size() == 4 ? 1 : 0;
    const Rgb one = RgbOf(before), other = RgbOf(after);
    EXPECT_NEAR(one.red, other.red, most);
    EXPECT_NEAR(one.green, other.green, most);
    EXPECT_NEAR(one.blue, other.blue, most);
}

TEST(Import, GivesThePictureThatThePackingShows) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    for (const Packing& packing : kPackings) {
        for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {1, 33}}) {
            SCOPED_TRACE(testing::Message() << packing.name << " " << width << "x" << height);
            const int bits = packing.bits <= 8 ? packing.bits : 24;
            const OwnedDib original = NoisePicture(width, height, bits, 3);
            const DibHandle foreign = Block(Pack(packing, original));
            const OwnedDib made = DibImport(foreign);
            ASSERT_TRUE(made);
            EXPECT_EQ(made.Get() == foreign, std::string_view(packing.name).starts_with("sound"));
            EXPECT_EQ(std::tuple(+made->biSize, +made->biWidth, +made->biHeight, +made->biBitCount,
                                 +made->biCompression),
                      std::tuple(40U, width, height, bits, 0U));
            Palette expected, palette;
            const int colours = DibGetPalette(*original, expected);
            EXPECT_EQ(DibGetPalette(*made, palette), colours);
            for (std::size_t i = 0; i < static_cast<std::size_t>(colours); ++i)
                EXPECT_EQ(palette[i], i < packing.tableEntries ? expected[i] : Rgb{});
            for (std::int32_t i = 0; i < width * height; ++i)
                ExpectColour(DibGetPixel(*original, i % width, i / width),
                             DibGetPixel(*made, i % width, i / width), packing);
        }
    }
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

TEST(Import, RoundsChannelsToNearest) {
    const OwnedDib white = PlainPicture(1, 1, 0xFFFFFF);
    Bytes bytes = Pack({"555", 40, 16}, white);
    bytes[40] = 0x01; // blue 1 of 31, green 16 of 31, red 30 of 31
    bytes[41] = 0x7A;
    EXPECT_EQ(DibGetPixel(*DibImport(Block(bytes)), 0, 0), MakeColour(247, 132, 8));
    // A 32-bit picture of our own making tells of a table entry that is not there.
    OwnedDib own = DibCreate(1, 1, nullptr, 32);
    DibSetPixel(*own, 0, 0, 0x80123456);
    EXPECT_EQ(DibGetPixel(*DibImport(own.Release()), 0, 0), 0x123456U);
}

TEST(Import, RefusesWhatIsNoPicture) {
    const OwnedDib original = NoisePicture(61, 47, 8, 3);
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    const Bytes good = Pack(kPackings[2], original);
    struct Damage {
        const char* what;
        std::size_t at;
        std::uint64_t value;
        std::size_t bytes;
    };
    const Damage damages[] = {
        {"header of no kind", 0, 41, 4},
        {"header beyond the block", 0, 0x80000028, 4},
        {"no width", 4, 0, 4},
        {"negative width", 4, 0xFFFFFFC3, 4},
        {"no height", 8, 0, 4},
        {"lowest height", 8, 0x80000000, 4},
        {"more rows than there are", 8, 48 + 4, 4},
        {"largest sides", 4, 0x7FFFFFFF7FFFFFFF, 8},
        {"sides whose product wraps", 4, 0x0001000000010000, 8},
        {"no depth", 14, 0, 2},
        {"depth 2", 14, 2, 2},
        {"depth 24, bytes for 8", 14, 24, 2},
        {"depth 65535", 14, 0xFFFF, 2},
        {"run lengths", 16, 1, 4},
        {"masks at 8 bits", 16, 3, 4},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.what);
        Bytes bytes = good;
        std::memcpy(&bytes[damage.at], &damage.value, damage.bytes);
        EXPECT_FALSE(DibImport(Block(bytes)));
    }
    // With neither a whole table nor one of the count that is told there is no place for the rows.
    for (const std::uint32_t told : {0xFFFFFFFFU, 0x40000000U, 250U})
        EXPECT_FALSE(DibImport(Block(Pack({"", 40, 8, false, 0, told, {}, 200}, original)))) << told;
    for (const auto length : {1, 11, 39, static_cast<int>(good.size()) - 16})
        EXPECT_FALSE(DibImport(Block({good.begin(), good.begin() + length})));
    EXPECT_FALSE(DibImport(0));
    // Sound in itself, but no build could make 24 bits of it.
    Bytes wide = Pack(kPackings[0], PlainPicture(1, 1, 0));
    wide[4] = wide[5] = wide[6] = 0xFF;
    wide[7] = 0x3F;
    wide.resize(wide.size() + (std::size_t{1} << 27));
    EXPECT_FALSE(DibImport(Block(wide)));

    const Bytes foreign = Pack({"top-down", 40, 24, true}, PlainPicture(7, 5, 0x123456));
    const DibHandle handle = Block(foreign);
    allocation_hooks::FailNth(1);
    EXPECT_FALSE(DibImport(handle));
    allocation_hooks::FailNth(0);
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
}

} // namespace
} // namespace lumafold::test
