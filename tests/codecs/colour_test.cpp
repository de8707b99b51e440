// Pictures whose files say that their colours are not those of sRGB.
#include <gtest/gtest.h>

#if LUMAFOLD_COLOUR_PROFILES
#include <lcms2.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <jpeglib.h>

#include "codecs/decode.h"
#include "codecs/picture_kinds.h"
#include "image/resample.h"
#include "tests/codecs/compose.h"
#include "tests/support/checksum.h"
#include "tests/support/colours.h"

namespace lumafold::test {
namespace {

constexpr std::uint64_t kMany = 1 << 20;

struct Space {
    cmsCIExyYTRIPLE primaries;
    double gamma; ///< 0 for sRGB's curve
};
constexpr Space kDisplayP3{{{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, 0};
constexpr Space kAdobeRgb{{{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}, 563.0 / 256};
constexpr Space kSrgb{{{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}}, 0};

FileBytes Saved(cmsHPROFILE profile) {
    cmsUInt32Number bytes = 0;
    cmsSaveProfileToMem(profile, nullptr, &bytes);
    FileBytes saved(bytes);
    cmsSaveProfileToMem(profile, saved.data(), &bytes);
    cmsCloseProfile(profile);
    return saved;
}

cmsToneCurve* CurveOf(double gamma) {
    const cmsFloat64Number srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return gamma > 0 ? cmsBuildGamma(nullptr, gamma) : cmsBuildParametricToneCurve(nullptr, 4, srgb);
}

FileBytes ProfileOf(const Space& space) {
    const cmsCIExyY white{0.3127, 0.3290, 1};
    cmsToneCurve* curve = CurveOf(space.gamma);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    FileBytes profile = Saved(cmsCreateRGBProfile(&white, &space.primaries, curves));
    cmsFreeToneCurve(curve);
    return profile;
}

/// The greatest difference between what two files show.
int WorstDifference(const FileBytes& file, const FileBytes& other) {
    const DecodedPicture one = DecodePicture(file, 0, kMany), two = DecodePicture(other, 0, kMany);
    EXPECT_EQ(one.error + two.error, "");
    int worst = one.picture && two.picture ? 0 : 1000;
    for (int i = 0; worst < 1000 && i < 37 * 21; ++i) {
        const Rgb a = ColourAt(*one.picture, i % 37, i / 37), b = ColourAt(*two.picture, i % 37, i / 37);
        worst = std::max(
            {worst, std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
    }
    return worst;
}

// What PNG files show is held to the byte below.
TEST(ColourProfiles, BringEveryKindToSrgb) {
    const RgbaPicture picture = SmoothPicture(37, 21, true);
    const FileBytes p3 = ProfileOf(kDisplayP3), adobe = ProfileOf(kAdobeRgb);
    const FileBytes png = ComposePng(picture, {.profile = p3});
    EXPECT_LT(WorstDifference(ComposeJpeg(picture, {.profile = p3}), png), 4);
    EXPECT_LT(
        WorstDifference(ComposeJpeg(picture, {.profile = adobe}), ComposePng(picture, {.profile = adobe})),
        4);
    // The last says it by a number.
    for (const auto& [name, most] :
         {std::pair{"p3.webp", 1}, {"p3.tiff", 1}, {"p3.heic", 14}, {"p3.avif", 14}, {"told.avif", 14}}) {
        const FileBytes file = KeptPicture(name);
        if (PictureKindOf(file)->Readable()) {
            EXPECT_LE(WorstDifference(file, png), most) << name;
        }
    }
}

RgbaPicture EveryColour() {
    RgbaPicture picture{64, 64, {}};
    for (int i = 0; i < 64 * 64; ++i) {
        for (const int sample : {(i & 15) * 17, (i >> 4 & 15) * 17, (i >> 8) * 17, i % 7 == 0 ? 100 : 255})
            picture.samples.push_back(static_cast<std::uint8_t>(sample));
    }
    return picture;
}

std::uint64_t ChecksumOf(const FileBytes& file) {
    const DecodedPicture got = DecodePicture(file, 0x336699, kMany);
    EXPECT_EQ(got.error, "");
    return got.picture ? DibChecksum(DibToTrueColour(*got.picture).Get()) : 0;
}

TEST(ColourProfiles, ChangeNothingWhereTheySaySrgbOrNonsense) {
    const RgbaPicture picture = EveryColour();
    const std::uint64_t plain = ChecksumOf(ComposeJpeg(picture, {}));
    const FileBytes srgb = ProfileOf(kSrgb),
                    cmyk = Saved(cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 250));
    const FileBytes lab = Saved(cmsCreateLab4Profile(nullptr));
    FileBytes cut = ProfileOf(kAdobeRgb);
    cut.resize(cut.size() / 2);
    for (const FileBytes& profile : {srgb, cmyk, lab, cut}) {
        EXPECT_EQ(ChecksumOf(ComposeJpeg(picture, {.profile = profile})), plain);
    }
}

/// Paper is white, cyan ink a strong red, and everything else black.
FileBytes InkProfile() {
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.4);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsUInt16Number places[16 * 3] = {};
    for (int i = 0; i < 16; ++i) {
        const cmsCIELab lab = i == 0   ? cmsCIELab{100, 0, 0}
                              : i == 8 ? cmsCIELab{54, 80, 67} // the first ink counts most
                                       : cmsCIELab{0, 0, 0};
        cmsFloat2LabEncodedV2(places + 3 * i, &lab);
    }
    cmsPipeline* table = cmsPipelineAlloc(nullptr, 4, 3);
    cmsPipelineInsertStage(table, cmsAT_END, cmsStageAllocToneCurves(nullptr, 4, nullptr));
    cmsPipelineInsertStage(table, cmsAT_END, cmsStageAllocCLut16bit(nullptr, 2, 4, 3, places));
    cmsPipelineInsertStage(table, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsWriteTag(profile, cmsSigAToB0Tag, table);
    cmsPipelineFree(table);
    return Saved(profile);
}

TEST(ColourProfiles, SayWhatInksLookLike) {
    const FileBytes profile = InkProfile();
    RgbaPicture picture{16, 8, FileBytes(std::size_t{16} * 8 * 4, 255)};
    for (std::size_t i = 0; i < picture.samples.size(); i += 4)
        picture.samples[i] = i % 64 < 32 ? 255 : 0;
    const ComposeOptions inks{.profile = profile, .given = JCS_CMYK, .stored = JCS_CMYK};
    const DecodedPicture got = DecodePicture(ComposeJpeg(picture, inks), 0, kMany);
    ASSERT_EQ(got.error, "");
    const OwnedDib& dib = got.picture;
    const Rgb paper = ColourAt(*dib, 2, 2), ink = ColourAt(*dib, 13, 2);
    EXPECT_GT(std::min({paper.red, paper.green, paper.blue}), 250);
    EXPECT_GT(ink.red, 240);
    EXPECT_LT(std::max(ink.green, ink.blue), 30);
}

/// A 16 x 1 ramp with what `tell` puts into it.
FileBytes Ramp(int type, int depth, const std::function<void(png_structp, png_infop)>& tell) {
    return WrittenPng([&, type = type, depth = depth](png_structp png, png_infop info) {
        png_set_IHDR(png, info, 16, 1, depth, type, PNG_INTERLACE_NONE, 0, 0);
        png_color colours[16];
        for (unsigned i = 0; i < 16; ++i) {
            const auto grey = static_cast<png_byte>(i * 17);
            colours[i] = {grey, grey, grey};
        }
        if (type == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, colours, 16);
        tell(png, info);
        png_write_info(png, info);
        FileBytes row;
        const int samples = type == PNG_COLOR_TYPE_RGB ? 3 : 1;
        for (int i = 0; i < 16 * samples * depth / 8; ++i) {
            const int x = i / (samples * depth / 8);
            row.push_back(static_cast<std::uint8_t>(type == PNG_COLOR_TYPE_PALETTE ? x : x * 17));
        }
        png_write_row(png, row.data());
    });
}

TEST(ColourProfiles, GiveTheSameBytesEverywhere) {
    const RgbaPicture picture = EveryColour();
    const FileBytes p3 = ProfileOf(kDisplayP3), adobe = ProfileOf(kAdobeRgb);
    EXPECT_EQ(ChecksumOf(ComposePng(picture, {.profile = p3})), 14776997739597892880U);
    EXPECT_EQ(ChecksumOf(ComposePng(picture, {.profile = adobe})), 7460228902631229100U);
    // A ramp of greys is the same however it is stored.
    for (const auto& [type, depth] : {std::pair{PNG_COLOR_TYPE_GRAY, 8},
                                      {PNG_COLOR_TYPE_GRAY, 16},
                                      {PNG_COLOR_TYPE_PALETTE, 8},
                                      {PNG_COLOR_TYPE_RGB, 8},
                                      {PNG_COLOR_TYPE_RGB, 16}}) {
        const FileBytes linear =
            Ramp(type, depth, [](png_structp png, png_infop info) { png_set_gAMA(png, info, 1.0); });
        EXPECT_EQ(ChecksumOf(linear), 14007563087307689997U) << type << ' ' << depth;
        const FileBytes told = Ramp(type, depth, [](png_structp png, png_infop info) {
            png_set_gAMA(png, info, 0.6);
            png_set_cHRM(png, info, 0.34, 0.36, 0.7, 0.3, 0.2, 0.7, 0.14, 0.05);
        });
        EXPECT_EQ(ChecksumOf(told), 15682847911815909625U) << type << ' ' << depth;
    }
}

} // namespace
} // namespace lumafold::test
#endif
