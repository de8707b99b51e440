#include "colour/palettes.h"

#include <gtest/gtest.h>

#include "tests/support/checksum.h"

namespace lumafold {
namespace {

TEST(FixedPalettes, AreTheNineAgreedOn) {
    const struct {
        int bits, colours;
        std::uint64_t checksum; // over all 768 bytes
    } expected[] = {
        {1, 2, 0xA7AED495B4C89EFE},   {4, 16, 0x00496FD755A20601},  {5, 32, 0x4CC1C0AE466C73C5},
        {6, 64, 0xD0C46BCE2F208975},  {7, 128, 0x36DB2D9BB27B350D}, {8, 216, 0x02DA4569867CDDD1},
        {8, 256, 0x17C2ADF13BEB2595}, {8, 256, 0x8A6AB83D9A3D884A}, {8, 256, 0x3AC8574C48F9B025},
    };
    for (int number = -2; number < 12; ++number) {
        SCOPED_TRACE(number);
        const auto& row = expected[number < 0 || number > 8 ? 6 : number];
        Palette palette;
        palette.fill({1, 2, 3});
        int bits = 0;
        EXPECT_EQ(BuildFixedPalette(&palette, &bits, number), row.colours);
        EXPECT_EQ(bits, row.bits);
        Checksum sum;
        sum.Add(palette.data(), sizeof(palette));
        EXPECT_EQ(sum.Value(), row.checksum);
        EXPECT_EQ(BuildFixedPalette(nullptr, nullptr, number), row.colours);
    }
    for (const auto& [colours, bits] : {std::pair{0, 1}, {3, 2}, {4, 2}, {5, 3}, {300, 8}})
        EXPECT_EQ(PaletteBitsFor(colours), bits) << colours;
}

} // namespace
} // namespace lumafold
