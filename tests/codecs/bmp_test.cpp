#include <gtest/gtest.h>

#include "codecs/decode.h"

namespace lumafold {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr PixelValue kMatte = MakeColour(200, 100, 50);

void Put(Bytes& to, std::uint32_t value, int bytes) {
    for (; bytes > 0; --bytes, value >>= 8)
        to.push_back(static_cast<std::uint8_t>(value));
}

struct BmpRecipe {
    int width, height; ///< negative for top-down
    int bits;
    std::uint32_t packing = 0;
    std::uint32_t headerBytes = 40;
    std::vector<std::uint32_t> masks{}; ///< within the header when it is longer than 40 bytes
    std::vector<Rgb> table{};
    std::uint32_t coloursTold = 0;
};

Bytes Compose(const BmpRecipe& bmp, const Bytes& pixels) {
    Bytes body;
    const int sideBytes = bmp.headerBytes == 12 ? 2 : 4;
    Put(body, bmp.headerBytes, 4);
    Put(body, static_cast<std::uint32_t>(bmp.width), sideBytes);
    Put(body, static_cast<std::uint32_t>(bmp.height), sideBytes);
    Put(body, 1, 2);
    Put(body, static_cast<std::uint32_t>(bmp.bits), 2);
    if (bmp.headerBytes > 12) {
        for (const std::uint32_t field : {bmp.packing, 0U, 0U, 0U, bmp.coloursTold, 0U})
            Put(body, field, 4);
    }
    for (const std::uint32_t mask : bmp.masks)
        Put(body, mask, 4);
    body.resize(std::max<std::size_t>(body.size(), bmp.headerBytes));
    for (const Rgb& entry : bmp.table) {
        body.insert(body.end(), {entry.blue, entry.green, entry.red});
        if (bmp.headerBytes > 12) body.push_back(0);
    }
    Bytes file{'B', 'M'};
    Put(file, 0, 8);
    Put(file, static_cast<std::uint32_t>(14 + body.size()), 4);
    file.insert(file.end(), body.begin(), body.end());
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

void ExpectPixels(const Bytes& file, int bits, const std::vector<std::vector<PixelValue>>& rows) {
    const DecodedPicture got = DecodePicture(file, kMatte, 1 << 20);
    ASSERT_EQ(got.error, "");
    const LockedDib dib(got.picture.Get());
    ASSERT_EQ(dib->biBitCount, bits);
    std::vector<std::vector<PixelValue>> seen(static_cast<std::size_t>(dib->biHeight));
    for (int y = 0; y < dib->biHeight; ++y) {
        for (int x = 0; x < dib->biWidth; ++x)
            seen[static_cast<std::size_t>(y)].push_back(DibGetPixel(*dib, x, y));
    }
    EXPECT_EQ(seen, rows);
    Palette palette;
    if (DibGetPalette(*dib, palette) > 0) {
        EXPECT_EQ(palette[0], (Rgb{9, 8, 7}));
        EXPECT_EQ(palette[1], (Rgb{1, 2, 3}));
    }
}

const std::vector<Rgb> kTable = {{9, 8, 7}, {1, 2, 3}};

TEST(BmpDecoder, KeepsDepthPaletteAndRowOrder) {
    for (const std::uint32_t header : {12U, 40U, 52U, 56U, 108U, 124U}) {
        SCOPED_TRACE(header);
        // Tables shorter than the depth allows, told so or cut off by the pixels.
        BmpRecipe bmp{9, 2, 1, 0, header, {}, kTable, header == 12 ? 0U : 2U};
        ExpectPixels(Compose(bmp, {0x80, 0x80, 0, 0, 0x01, 0x00, 0, 0}), 1,
                     {{0, 0, 0, 0, 0, 0, 0, 1, 0}, {1, 0, 0, 0, 0, 0, 0, 0, 1}});
        bmp.bits = 4;
        bmp.width = 3;
        ExpectPixels(Compose(bmp, {0x01, 0xF0, 0, 0, 0x10, 0x20}), 4, {{1, 0, 2}, {0, 1, 15}});
        bmp.bits = 8;
        bmp.coloursTold = 0;
        ExpectPixels(Compose(bmp, {1, 2, 3, 0, 250, 1, 0, 0}), 8, {{250, 1, 0}, {1, 2, 3}});
        bmp.bits = 24;
        bmp.width = 1;
        ExpectPixels(Compose(bmp, {1, 2, 3, 0, 4, 5, 6}), 24, {{0x040506}, {0x010203}});
        if (header == 12) continue;
        bmp.height = -2;
        ExpectPixels(Compose(bmp, {1, 2, 3, 0, 4, 5, 6}), 24, {{0x010203}, {0x040506}});
    }
}

TEST(BmpDecoder, BringsBitFieldsToEightBits) {
    ExpectPixels(Compose({2, 1, 16}, {0x00, 0x7C, 0x10, 0x02}), 24, {{0x0000FF, 0x848400}});
    Bytes five65 = Compose({2, 1, 16, 3, 40, {0xF800, 0x07E0, 0x001F}}, {0x00, 0xF8, 0x10, 0x04});
    ExpectPixels(five65, 24, {{0x0000FF, 0x848200}});
    std::fill_n(five65.begin() + 10, 4, std::uint8_t{0}); // where the pixels begin is left to the reader
    ExpectPixels(five65, 24, {{0x0000FF, 0x848200}});
    ExpectPixels(Compose({1, 1, 32}, {3, 2, 1, 0x80}), 24, {{0x030201}});
    ExpectPixels(Compose({1, 1, 32, 3, 40, {0x3FF00000, 0x000FFC00, 0x000003FF}}, {0xFF, 0x03, 0x08, 0x20}),
                 24, {{MakeColour(128, 128, 255)}});
    // Alpha counts where a mask tells of it, unless it is zero all over.
    const std::vector<std::uint32_t> masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    for (const std::uint32_t header : {56U, 124U}) {
        const BmpRecipe bmp{2, 1, 32, 3, header, masks};
        ExpectPixels(Compose(bmp, {3, 2, 1, 0, 0, 0, 0, 51}), 24, {{kMatte, MakeColour(160, 80, 40)}});
        ExpectPixels(Compose(bmp, {3, 2, 1, 0, 6, 5, 4, 0}), 24, {{0x030201, 0x060504}});
    }
}

TEST(BmpDecoder, UnpacksRuns) {
    const Bytes runs8 = {3, 1, 0, 0, 0, 3, 5, 6, 7, 0, 0, 0, 0, 2, 1, 0, 1, 9, 0, 1};
    ExpectPixels(Compose({4, 3, 8, 1, 40, {}, kTable}, runs8), 8, {{0, 9, 0, 0}, {5, 6, 7, 0}, {1, 1, 1, 0}});
    // Over the row's end, then on in the next; no end mark.
    ExpectPixels(Compose({3, 2, 8, 1, 40, {}, kTable}, {9, 1, 0, 0, 3, 2}), 8, {{2, 2, 2}, {1, 1, 1}});
    const Bytes runs4 = {3, 0x12, 0, 0, 0, 5, 0x34, 0x56, 0x70, 0, 1, 0x80, 0, 1};
    ExpectPixels(Compose({6, 2, 4, 2, 40, {}, kTable}, runs4), 4, {{3, 4, 5, 6, 7, 8}, {1, 2, 1, 0, 0, 0}});
}

TEST(BmpDecoder, TellsWhatIsWrong) {
    const auto told = [](const BmpRecipe& bmp, const Bytes& pixels, const char* text) {
        const std::string error = DecodePicture(Compose(bmp, pixels), kMatte, 1000).error;
        EXPECT_NE(error.find(text), std::string::npos) << error;
    };
    const Bytes enough(4000);
    told({2, 2, 24}, Bytes(13), "ends too early");
    told({4, 2, 8, 1, 40, {}, kTable}, {4, 1, 0, 0, 0, 4, 1}, "ends too early");
    told({4, 2, 8, 1, 40, {}, kTable}, {4, 1, 0, 0, 3, 1}, "ends too early");
    told({0, 2, 24}, enough, "no pixels");
    told({1, 16385, 1}, enough, "too many");
    told({40, 26, 1}, enough, "too many");
    told({1, static_cast<int>(0x80000000U), 24}, enough, "too many");
    told({-1, 1, 24}, enough, "too many");
    told({2, 2, 7}, enough, "not supported");
    told({2, 2, 24, 5}, enough, "not supported");
    told({2, -2, 8, 1}, enough, "not supported");
    told({2, 2, 24, 0, 41000}, enough, "unknown kind");
}

} // namespace
} // namespace lumafold
