#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "codecs/animation_reader.h"
#include "codecs/animation_writer.h"
#include "codecs/decode.h"
#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "tests/support/animations.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint64_t kMost = 5000;

Bytes SmallPng() {
    std::string error;
    return EncodePng(NoisePicture(33, 17, 24, 1).Get(), error);
}

Bytes SmallGif() {
    Animation animation = EmptyAnimation(33, 17, 8);
    animation.comment = "comment";
    AddFrame(animation, {8, 5, 250, 20},
             [](int x, int y) { return static_cast<unsigned>((x + 20 * y) * x % 251); });
    std::string error;
    return EncodeAnimation(AnimationKind::Gif, animation, error);
}

Bytes With(Bytes file, std::size_t offset, std::initializer_list<std::uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
    return file;
}

TEST(DamagedPictures, CutAnywhereAreTold) {
    // The mark behind the last frame of a GIF is no part of the first.
    for (const auto& [file, head, tail] : {std::tuple{SmallPng(), 8, 0}, {SmallGif(), 6, 1}}) {
        const std::size_t enough = file.size() - static_cast<std::size_t>(tail);
        EXPECT_EQ(DecodePicture(std::span(file).first(enough), 0, kMost).error, "");
        for (auto length = static_cast<std::size_t>(head); length < enough; ++length) {
            EXPECT_EQ(DecodePicture(std::span(file).first(length), 0, kMost).error, "the file ends too early")
                << length;
        }
    }
}

TEST(DamagedPictures, TooLargeOnesAreToldBeforeTheyAreUnpacked) {
    const Bytes png = SmallPng(), gif = SmallGif();
    for (const Bytes& file :
         {With(png, 16, {0, 0, 0x40, 1}), With(png, 20, {0x7F, 0xFF, 0xFF, 0xFF}),
          With(png, 16, {0, 0, 0x01, 0x80}), With(gif, 6, {0xFF, 0xFF}), With(gif, 8, {0x00, 0x02})}) {
        const auto before = allocation_hooks::Requests();
        const std::string error = DecodePicture(file, 0, kMost).error;
        EXPECT_NE(error.find("too many"), std::string::npos) << error;
        EXPECT_EQ(allocation_hooks::Requests(), before);
    }
    EXPECT_EQ(DecodePicture(With(png, 16, {0, 0, 0, 0}), 0, kMost).error, "the picture has no pixels");
}

TEST(DamagedPictures, ShowInSpiteOfWhatIsNotNeededForThem) {
    Bytes file = SmallPng();
    const std::initializer_list<std::uint8_t> text = {0, 0, 0, 2, 't', 'E', 'X', 't', 'a', 0, 1, 2, 3, 4};
    file.insert(file.begin() + 33, text); // its sum is wrong
    EXPECT_EQ(DecodePicture(file, 0, kMost).error, "");
    EXPECT_EQ(DecodeAnimation(file, kMost).error, "");
}

#if !defined(_WIN32) && !defined(__EMSCRIPTEN__) // there are none
TEST(DamagedPictures, DevicesThatNeverEndAreRefusedAtOnce) {
    const auto before = allocation_hooks::Requests();
    for (const std::string& error :
         {DecodePictureFile("/dev/zero", 0, kMost).error, DecodeAnimationFile("/dev/zero", kMost).error})
        EXPECT_TRUE(error.starts_with("this is no PNG, JPEG,")) << error;
    EXPECT_EQ(DecodePictureFile("/dev/null", 0, kMost).error, "the file is empty");
    EXPECT_EQ(allocation_hooks::Requests(), before);
}

TEST(Files, ThatAreDevicesAreWrittenTo) {
    std::string error;
    EXPECT_TRUE(WriteFileSafely("/dev/null", Bytes(10), error));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null")) << "no file may take a device's place";
    EXPECT_FALSE(WriteFileSafely("/dev/full", Bytes(10), error));
    EXPECT_EQ(error, "the disk is full");
}
#endif

TEST(DamagedPictures, LackOfMemoryIsTold) {
    for (const Bytes& file : {SmallPng(), SmallGif()}) {
        const auto blocks = allocation_hooks::LiveBlocks();
        allocation_hooks::FailNth(1);
        EXPECT_EQ(DecodePicture(file, 0, kMost).error, "there is not enough memory for the picture");
        allocation_hooks::FailNth(0);
        EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
    }
}

} // namespace
} // namespace lumafold::test
