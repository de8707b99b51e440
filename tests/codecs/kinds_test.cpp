// WebP, TIFF, HEIC and AVIF pictures, as their own libraries write them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "codecs/decode.h"
#include "codecs/picture_kinds.h"
#include "tests/codecs/compose.h"
#include "tests/support/colours.h"

namespace lumafold::test {
namespace {

constexpr PixelValue kMatte = MakeColour(200, 100, 50);
constexpr std::uint64_t kMany = 1 << 20;

/// The greatest difference of a sample to the picture over the matte, at the place where it is to be seen.
int WorstDifference(const DibHeader& seen, const RgbaPicture& picture, int orientation, bool grey) {
    int worst = 0;
    const int right = picture.width - 1, bottom = picture.height - 1;
    for (int y = 0; y <= bottom; ++y) {
        for (int x = 0; x <= right; ++x) {
            const std::pair<int, int> places[] = {
                {x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                {y, x}, {bottom - y, x}, {bottom - y, right - x}, {y, right - x}};
            const auto [seenX, seenY] = places[orientation - 1];
            const Rgb got = ColourAt(seen, seenX, seenY);
            const std::uint8_t* rgba = picture.samples.data() + (y * picture.width + x) * 4;
            const int channels[] = {got.red, got.green, got.blue};
            for (int c = 0; c < 3; ++c) {
                const int alpha = grey ? 255 : rgba[3];
                const auto matte = static_cast<int>(kMatte >> (8 * c) & 0xFF);
                const int wanted = (rgba[grey ? 0 : c] * alpha + matte * (255 - alpha) + 127) / 255;
                worst = std::max(worst, std::abs(channels[c] - wanted));
            }
        }
    }
    return worst;
}

struct KindCase {
    std::string name;
    FileBytes file;
    int tolerance, orientation = 1;
    bool grey = false;
};

/// Of 37 x 21 pixels, each kind where this build reads it.
std::vector<KindCase> KindCases(const RgbaPicture& picture) {
    std::vector<KindCase> cases;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const ComposeOptions turned{true, orientation};
        const std::string turn = " " + std::to_string(orientation);
#if LUMAFOLD_WEBP
        cases.push_back({"WebP" + turn, ComposeWebp(picture, turned), 0, orientation});
#endif
#if LUMAFOLD_TIFF
        cases.push_back({"TIFF" + turn, ComposeTiff(picture, turned), 1, orientation});
#endif
#if LUMAFOLD_HEIF
        cases.push_back({"HEIC" + turn, ComposeHeif(picture, HeifKind::Heic, turned), 8, orientation});
        cases.push_back({"AVIF" + turn, ComposeHeif(picture, HeifKind::Avif, turned), 8, orientation});
#endif
    }
#if LUMAFOLD_WEBP
    cases.push_back({"lossy WebP", ComposeWebp(picture, {false}), 12});
#endif
#if LUMAFOLD_TIFF
    constexpr int kLzw = 5, kDeflate = 8, kPackBits = 32773;
    cases.push_back({"LZW TIFF in tiles", ComposeTiff(picture, {.tiff = {kLzw, 8, true}}), 1});
    cases.push_back({"16-bit TIFF", ComposeTiff(picture, {.tiff = {kDeflate, 16}}), 1});
    cases.push_back({"grey TIFF", ComposeTiff(picture, {.tiff = {kPackBits, 8, false, true}}), 0, 1, true});
#endif
    return cases;
}

TEST(PictureKinds, AreReadUprightOverTheMatte) {
    const RgbaPicture picture = SmoothPicture(37, 21, false);
    for (const KindCase& one : KindCases(picture)) {
        SCOPED_TRACE(one.name);
        const DecodedPicture got = DecodePicture(one.file, kMatte, kMany);
        ASSERT_EQ(got.error, "");
        const OwnedDib& dib = got.picture;
        ASSERT_EQ(dib->biWidth, one.orientation >= 5 ? 21 : 37);
        ASSERT_EQ(dib->biHeight, one.orientation >= 5 ? 37 : 21);
        EXPECT_LE(WorstDifference(*dib, picture, one.orientation, one.grey), one.tolerance);
        EXPECT_NE(DecodePicture(one.file, kMatte, 37 * 21 - 1).error.find("too many"), std::string::npos);
    }
}

TEST(PictureKinds, TellWhenTheyAreCutShort) {
    for (const KindCase& one : KindCases(SmoothPicture(37, 21, false))) {
        for (std::size_t length = 12; length + 1 < one.file.size(); length += 37) {
            const DecodedPicture got = DecodePicture(std::span(one.file).first(length), kMatte, kMany);
            EXPECT_FALSE(got.picture) << one.name << " cut to " << length << " of " << one.file.size();
            EXPECT_EQ(got.error.find('\n'), std::string::npos);
        }
    }
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
