#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "hosts/codecs/decode.h"
#include "hosts/codecs/gif_writer.h"
#include "hosts/codecs/png_writer.h"

namespace lumafold {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint64_t kMost = 5000;

Bytes SmallPng() {
    const OwnedDib picture(DibCreate(33, 17, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (int i = 0; i < 33 * 17; ++i)
        DibSetPixel(dib.Get(), i % 33, i / 33, static_cast<PixelValue>(i * 7919));
    std::string error;
    return EncodePng(picture.Get(), error);
}

Bytes SmallGif() {
    Animation animation;
    animation.width = 33;
    animation.height = 17;
    animation.comment = "comment";
    OwnedDib picture(DibCreate(20, 17, nullptr, 8));
    {
        const LockedDib dib(picture.Get());
        for (int i = 0; i < 20 * 17; ++i) {
            DibSetPixel(dib.Get(), i % 20, i / 20, static_cast<PixelValue>(i * i % 251));
        }
    }
    animation.frames.push_back({std::move(picture), 5, 250});
    std::string error;
    return EncodeGif(animation, error);
}

Bytes With(Bytes file, std::size_t offset, std::initializer_list<std::uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
    return file;
}

TEST(DamagedPictures, CutAnywhereAreTold) {
    const Bytes png = SmallPng(), gif = SmallGif();
    for (std::size_t length = 8; length < png.size(); ++length) {
        EXPECT_EQ(DecodePicture(std::span(png).first(length), 0, kMost).error, "the file ends too early")
            << length;
    }
    // The mark behind the last frame is no part of the first.
    ASSERT_EQ(DecodePicture(std::span(gif).first(gif.size() - 1), 0, kMost).error, "");
    for (std::size_t length = 6; length < gif.size() - 1; ++length) {
        EXPECT_EQ(DecodePicture(std::span(gif).first(length), 0, kMost).error, "the file ends too early")
            << length;
    }
}

TEST(DamagedPictures, TooLargeOnesAreToldBeforeTheyAreUnpacked) {
    const Bytes png = SmallPng(), gif = SmallGif();
    const Bytes large[] = {With(png, 16, {0, 0, 0x40, 1}), With(png, 20, {0x7F, 0xFF, 0xFF, 0xFF}),
                           With(png, 16, {0, 0, 0x01, 0x80}), With(gif, 6, {0xFF, 0xFF}),
                           With(gif, 8, {0x00, 0x02})};
    for (const Bytes& file : large) {
        const auto before = allocation_hooks::Requests();
        const std::string error = DecodePicture(file, 0, kMost).error;
        EXPECT_NE(error.find("too many"), std::string::npos) << error;
        EXPECT_EQ(allocation_hooks::Requests(), before);
    }
    EXPECT_EQ(DecodePicture(With(png, 16, {0, 0, 0, 0}), 0, kMost).error, "the picture has no pixels");
}

TEST(DamagedPictures, LackOfMemoryIsTold) {
    for (const Bytes& file : {SmallPng(), SmallGif()}) {
        const auto blocks = allocation_hooks::LiveBlocks();
        allocation_hooks::FailNth(1);
        EXPECT_EQ(DecodePicture(file, 0, kMost).error, "there is not enough memory for the picture");
        allocation_hooks::FailNth(0);
        EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
    }
}

// Any bytes end in a picture or in one line of text, and in nothing left behind.
TEST(DamagedPictures, DoNoHarm) {
    std::mt19937 random(5);
    const Bytes files[] = {SmallPng(), SmallGif()};
    const auto blocks = allocation_hooks::LiveBlocks();
    for (int round = 0; round < 3000; ++round) {
        Bytes file = files[round % 2];
        for (auto edits = 1 + random() % 5; edits > 0; --edits) {
            file[random() % (edits % 2 == 0 ? file.size() : 40)] = static_cast<std::uint8_t>(random());
        }
        {
            const DecodedPicture got = DecodePicture(file, 0, kMost);
            ASSERT_EQ(static_cast<bool>(got.picture), got.error.empty());
            ASSERT_EQ(got.error.find('\n'), std::string::npos);
        }
        ASSERT_EQ(allocation_hooks::LiveBlocks(), blocks);
    }
}

} // namespace
} // namespace lumafold
