// JPEG, WebP, TIFF, HEIC and AVIF pictures, as their own libraries write them.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>
#include <jpeglib.h>

#include "codecs/decode.h"
#include "codecs/picture_kinds.h"
#include "tests/codecs/compose.h"
#include "tests/support/colours.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kMatte = MakeColour(200, 100, 50);
constexpr std::uint64_t kMany = 1 << 20;

struct KindCase {
    std::string name;
    FileBytes file;
    int tolerance, orientation = 1;
    bool grey = false;
    RgbaPicture picture;
    PixelValue matte = kMatte;
};

/// The greatest difference of a sample to the picture over the matte, at the place where it is to be seen.
int WorstDifference(const DibHeader& seen, const KindCase& one) {
    int worst = 0;
    const int right = one.picture.width - 1, bottom = one.picture.height - 1;
    for (int y = 0; y <= bottom; ++y) {
        for (int x = 0; x <= right; ++x) {
            const std::pair<int, int> places[] = {
                {x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                {y, x}, {bottom - y, x}, {bottom - y, right - x}, {y, right - x}};
            const auto [seenX, seenY] = places[one.orientation - 1];
            const Rgb got = ColourAt(seen, seenX, seenY);
            const std::uint8_t* rgba = one.picture.samples.data() + (y * one.picture.width + x) * 4;
            const int channels[] = {got.red, got.green, got.blue};
            for (int c = 0; c < 3; ++c) {
                const int alpha = one.grey ? 255 : rgba[3];
                const auto matte = static_cast<int>(one.matte >> (8 * c) & 0xFF);
                const int wanted = (rgba[one.grey ? 0 : c] * alpha + matte * (255 - alpha) + 127) / 255;
                worst = std::max(worst, std::abs(channels[c] - wanted));
            }
        }
    }
    return worst;
}

/// Each kind where this build reads it.
std::vector<KindCase> KindCases() {
    const RgbaPicture picture = SmoothPicture(37, 21, false), opaque = SmoothPicture(37, 21, true);
    std::vector<KindCase> cases;
    const auto jpeg = [&](const char* name, const ComposeOptions& options) {
        const bool inks = options.given == JCS_CMYK, grey = options.given == JCS_GRAYSCALE;
        // Black darkens what is under it, like a picture less opaque over black.
        const RgbaPicture& from = inks ? picture : opaque;
        cases.push_back(
            {name, ComposeJpeg(from, options), 6, options.orientation, grey, from, inks ? 0 : kMatte});
    };
    jpeg("RGB JPEG", {});
    jpeg("progressive JPEG", {.stored = JCS_YCbCr, .progressive = true});
    jpeg("CMYK JPEG", {.given = JCS_CMYK, .stored = JCS_CMYK});
    jpeg("CMYK JPEG without mark", {.given = JCS_CMYK, .stored = JCS_CMYK, .adobe = false});
    jpeg("YCCK JPEG", {.given = JCS_CMYK, .stored = JCS_YCCK});
    const auto kept = [&](const std::string& name, int tolerance, int orientation = 0, bool grey = false) {
        const bool counts =
            name.ends_with("webp") || name.ends_with("tiff"); // HEIF turns by a box of its own
        FileBytes file = KeptPicture(name, counts ? orientation : 0);
        if (!PictureKindOf(file)->Readable()) return;
        cases.push_back({name, std::move(file), tolerance, std::max(orientation, 1), grey, picture});
    };
    for (int orientation = 1; orientation <= 8; ++orientation) {
        jpeg("JPEG", {.orientation = orientation, .stored = JCS_YCbCr});
        jpeg("grey JPEG", {.orientation = orientation, .given = JCS_GRAYSCALE, .stored = JCS_GRAYSCALE});
        kept("turned.webp", 0, orientation);
        kept("turned.tiff", 1, orientation);
    }
    kept("lossy.webp", 12);
    kept("tiles.tiff", 1); // LZW
    kept("deep.tiff", 1);  // 16 bits, deflate
    kept("grey.tiff", 0, 0, true);
    kept("turned.heic", 8, 6);
    kept("turned.avif", 8, 7);
    return cases;
}

TEST(PictureKinds, AreReadUprightOverTheMatte) {
    for (const KindCase& one : KindCases()) {
        SCOPED_TRACE(one.name + ", orientation " + std::to_string(one.orientation));
        const DecodedPicture got = DecodePicture(one.file, one.matte, kMany);
        ASSERT_EQ(got.error, "");
        const OwnedDib& dib = got.picture;
        ASSERT_EQ(dib->biWidth, one.orientation >= 5 ? 21 : 37);
        ASSERT_EQ(dib->biHeight, one.orientation >= 5 ? 37 : 21);
        EXPECT_TRUE(one.file[0] != 0xFF || dib->biBitCount == (one.grey ? 8 : 24));
        EXPECT_LE(WorstDifference(*dib, one), one.tolerance);
        EXPECT_NE(DecodePicture(one.file, kMatte, 37 * 21 - 1).error.find("too many"), std::string::npos);
    }
}

TEST(PictureKinds, TellWhenTheyAreCutShort) {
    for (const KindCase& one : KindCases()) {
        for (std::size_t length = 12; length + 2 < one.file.size(); length += 37) {
            const DecodedPicture got = DecodePicture(std::span(one.file).first(length), kMatte, kMany);
            EXPECT_FALSE(got.picture) << one.name << " cut to " << length << " of " << one.file.size();
            EXPECT_EQ(got.error.find('\n'), std::string::npos);
            EXPECT_TRUE(one.file[0] != 0xFF || got.error == "the file ends too early") << got.error;
        }
    }
}

TEST(JpegDecoder, TellsWhenItIsTooLargeOrEndsAmidst) {
    FileBytes file = ComposeJpeg(SmoothPicture(61, 47, true), {.stored = JCS_YCbCr});
    const std::uint8_t frame[] = {0xFF, 0xC0, 0, 17, 8, 0, 47, 0, 61};
    const auto at = std::search(file.begin(), file.end(), std::begin(frame), std::end(frame));
    ASSERT_NE(at, file.end());
    at[5] = 0x40;
    EXPECT_EQ(DecodePicture(file, 0, 1 << 30).error, "61 x 16431 pixels are too many, a side may have 16384");
    at[5] = 0;
    const std::uint8_t end[] = {0xFF, 0xD9};
    std::copy(std::begin(end), std::end(end), file.end() - 200);
    EXPECT_NE(DecodePicture(file, 0, 1 << 30).error.find("the JPEG data is damaged"), std::string::npos);
}

TEST(PictureKinds, AreNamedWhenTheyCannotBeRead) {
    const std::pair<const char*, std::string_view> starts[] = {{"WebP", {"RIFF\1\0\0\0WEBPVP8 ", 16}},
                                                               {"TIFF", {"MM\0*\0\0\0\10", 8}},
                                                               {"HEIC", {"\0\0\0\30ftypheic", 12}},
                                                               {"AVIF", {"\0\0\0\30ftypavif", 12}}};
    for (const auto& [name, start] : starts) {
        const FileBytes file(start.begin(), start.end());
        const PictureKind* kind = PictureKindOf(file);
        ASSERT_NE(kind, nullptr);
        EXPECT_EQ(kind->name, name);
        const std::string unreadable =
            "this is a picture of the kind " + std::string(name) + ", which this build cannot read";
        EXPECT_EQ(DecodePicture(file, 0, kMany).error == unreadable, !kind->Readable());
        EXPECT_EQ(ReadablePictureKinds("or").find(name) != std::string::npos, kind->Readable());
    }
}

} // namespace
} // namespace lumafold::test
