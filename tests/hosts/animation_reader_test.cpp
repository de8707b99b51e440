#include <gtest/gtest.h>

#include <random>

#include "hosts/codecs/animation_reader.h"
#include "hosts/codecs/apng_writer.h"
#include "hosts/codecs/gif_writer.h"
#include "hosts/codecs/mng_writer.h"
#include "hosts/codecs/png_frames.h"
#include "hosts/codecs/png_writer.h"
#include "hosts/desktop/frame_screens.h"
#include "tests/hosts/animations.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using File = std::vector<std::uint8_t>;
using Writer = File (*)(const Animation&, std::string&);
constexpr std::uint64_t kPlenty = 1 << 24;

struct Format {
    const char* name;
    Writer encode;
    std::int32_t mostDelay;
};
constexpr Format kFormats[] = {
    {"GIF", EncodeGif, 65535}, {"APNG", EncodeApng, 65535}, {"MNG", EncodeMng, 0x7FFFFFFF}};

std::vector<ScreenPixels> Screens(const Animation& animation) {
    FrameScreens screens(animation);
    std::vector<ScreenPixels> all;
    for (std::size_t i = 0; i < animation.frames.size(); ++i)
        all.push_back(screens.At(i));
    return all;
}

TEST(AnimationReader, ReadsBackWhatTheWritersWrote) {
    for (const auto& [name, animation] : AnimationCases()) {
        for (const Format& format : kFormats) {
            std::string error;
            const File file = format.encode(animation, error);
            if (file.empty()) continue; // true colour is nothing for GIF
            SCOPED_TRACE(name + " as " + format.name);
            const ReadAnimation read = DecodeAnimation(file, kPlenty);
            ASSERT_TRUE(read.animation) << read.error;
            EXPECT_EQ(read.animation->width, animation.width);
            EXPECT_EQ(read.animation->comment, animation.comment);
            EXPECT_EQ(Screens(*read.animation), WantedScreens(animation));
            for (std::size_t i = 0; i < animation.frames.size(); ++i)
                EXPECT_EQ(read.animation->frames[i].delay,
                          std::clamp(animation.frames[i].delay, 0, format.mostDelay));
            const auto pixels = static_cast<std::uint64_t>(animation.width) *
                                static_cast<std::uint64_t>(animation.height) * animation.frames.size();
            EXPECT_TRUE(DecodeAnimation(file, pixels).animation);
            EXPECT_FALSE(DecodeAnimation(file, pixels - 1).animation) << "beyond the bound";
        }
    }
}

TEST(AnimationReader, KeepsPalettesAsLongAsTheyReach) {
    Animation animation = EmptyAnimation(16, 17, 8);
    const auto ramp = [](int x, int y) { return MakeColour(static_cast<unsigned>(x * 17 + y), 0, 0); };
    AddFrame(
        animation, 24, [&](int x, int y) { return y < 16 ? ramp(x, 0) : 0U; }, 5);
    std::string error;
    ReadAnimation read = DecodeAnimation(EncodeApng(animation, error), kPlenty);
    ASSERT_TRUE(read.animation) << read.error;
    EXPECT_EQ(LockedDib(read.animation->frames[0].image.Get())->biBitCount, 8);
    EXPECT_EQ(read.animation->paletteBits, 4);
    EXPECT_FALSE(EncodeGif(*read.animation, error).empty()) << error;
    AddFrame(animation, 24, ramp, 5);
    AddFrame(
        animation, 24, [&](int x, int y) { return ramp(x, y) << 8; }, 5);
    read = DecodeAnimation(EncodeApng(animation, error), kPlenty);
    ASSERT_TRUE(read.animation) << read.error;
    EXPECT_EQ(LockedDib(read.animation->frames[0].image.Get())->biBitCount, 24);
    EXPECT_EQ(Screens(*read.animation), WantedScreens(animation));
}

/// Three frames of 2x1: all red, then the right pixel green, then nothing new.
Animation RedThenGreen() {
    Animation animation = EmptyAnimation(2, 1, 2);
    animation.palette[0] = {255, 0, 0};
    animation.palette[1] = {0, 255, 0};
    AddFrame(
        animation, 8, [](int, int) { return 0U; }, 5);
    AddFrame(
        animation, 8, [](int x, int) { return x == 1 ? 1U : 3U; }, 5, 3);
    AddFrame(
        animation, 8, [](int, int) { return 3U; }, 5, 3);
    return animation;
}

TEST(AnimationReader, DoesWithAFrameWhatGifSays) {
    std::string error;
    const File kept = EncodeGif(RedThenGreen(), error);
    File file = kept;
    constexpr std::uint8_t kControl[] = {0x21, 0xF9, 0x04};
    auto control = std::search(file.begin(), file.end(), std::begin(kControl), std::end(kControl));
    control = std::search(control + 1, file.end(), std::begin(kControl), std::end(kControl));
    ASSERT_NE(control, file.end());
    constexpr struct {
        std::uint8_t disposal;
        PixelValue leftAfter;
    } kCases[] = {{0, 0x00FF00}, {1, 0x00FF00}, {2, 0xFFFFFF}, {3, 0x0000FF}};
    for (const auto& each : kCases) {
        control[3] = static_cast<std::uint8_t>((control[3] & 1) | each.disposal << 2);
        const ReadAnimation read = DecodeAnimation(file, kPlenty);
        ASSERT_TRUE(read.animation) << read.error;
        const auto screens = Screens(*read.animation);
        EXPECT_EQ(screens[1], (ScreenPixels{0x0000FF, 0x00FF00})) << int{each.disposal};
        EXPECT_EQ(screens[2], (ScreenPixels{0x0000FF, each.leftAfter})) << int{each.disposal};
    }
}

/// A PNG file taken apart, so that its chunks can stand in another.
ChunkWriter::Data ChunkOf(const File& png, std::string_view type) {
    const auto at = std::search(png.begin(), png.end(), type.begin(), type.end());
    ChunkWriter::Data data;
    std::uint32_t length = 0;
    for (int i = 4; i > 0; --i)
        length = length << 8 | at[-i];
    return data.Bytes(&at[4], length);
}

File Apng(std::uint32_t dispose, std::uint32_t blend) {
    std::string error;
    const OwnedDib red = PlainPicture(2, 1, 0x0000FF), green = PlainPicture(1, 1, 0x00FF00);
    const File whole = EncodePng(red.Get(), error), small = EncodePng(green.Get(), error);
    const auto control = [&](std::uint32_t sequence, std::uint32_t width, std::uint32_t disposal) {
        ChunkWriter::Data data;
        data.U32(sequence).U32(width).U32(1).U32(0).U32(0).U16(1).U16(2);
        return data.U8(disposal).U8(blend);
    };
    const auto data = [](std::uint32_t sequence, const File& png) {
        const ChunkWriter::Data rows = ChunkOf(png, "IDAT");
        return ChunkWriter::Data().U32(sequence).Bytes(rows.Get().data(), rows.Get().size());
    };
    ChunkWriter file("\x89PNG\r\n\x1A\n");
    file.Put("IHDR", ChunkOf(whole, "IHDR"));
    file.Put("acTL", ChunkWriter::Data().U32(2).U32(0));
    file.Put("IDAT", ChunkOf(whole, "IDAT")); // no frame: nothing controls it
    file.Put("fcTL", control(0, 2, 0));
    file.Put("fdAT", data(1, whole));
    file.Put("fcTL", control(2, 1, dispose));
    file.Put("fdAT", data(3, small));
    file.Put("fcTL", control(4, 1, 0));
    file.Put("fdAT", data(5, small));
    file.Put("IEND");
    return file.Take();
}

TEST(AnimationReader, DoesWithAFrameWhatApngSays) {
    for (const std::uint32_t dispose : {0U, 1U, 2U}) {
        const ReadAnimation read = DecodeAnimation(Apng(dispose, dispose % 2), kPlenty);
        ASSERT_TRUE(read.animation) << read.error;
        ASSERT_EQ(read.animation->frames.size(), 3U);
        EXPECT_EQ(read.animation->frames[0].delay, 50);
        EXPECT_EQ(Screens(*read.animation)[2], (ScreenPixels{0x00FF00, 0x0000FF}));
    }
    File file = Apng(0, 0);
    const auto told = [&] { return DecodeAnimation(file, kPlenty).error; };
    file[20] ^= 1;
    EXPECT_NE(told().find("checksum"), std::string::npos) << told();
}

TEST(AnimationReader, OpensStillPicturesAndNamesWhatItCannot) {
    std::string error;
    const OwnedDib picture = BusyPicture(7, 5, 3);
    const ReadAnimation still = DecodeAnimation(EncodePng(picture.Get(), error), kPlenty);
    ASSERT_TRUE(still.animation) << still.error;
    EXPECT_EQ(still.animation->frames.size(), 1U);
    EXPECT_EQ(Screens(*still.animation)[0][8], PixelAt(picture.Get(), 1, 1));

    ChunkWriter mng("\x8AMNG\r\n\x1A\n");
    mng.Put("MHDR", ChunkWriter::Data().U32(2).U32(2).U32(100));
    mng.Put("LOOP");
    EXPECT_NE(DecodeAnimation(mng.Take(), kPlenty).error.find("LOOP"), std::string::npos);
    EXPECT_NE(DecodeAnimation(File{'h', 'a'}, kPlenty).error, "");
    EXPECT_NE(DecodeAnimationFile("/no/such/file.gif", kPlenty).error, "");
}

TEST(AnimationReader, SurvivesDamage) {
    const Animation animation = RedThenGreen();
    std::mt19937 random(3);
    for (const Format& format : kFormats) {
        std::string error;
        const File whole = format.encode(animation, error);
        for (std::size_t length = 0; length < whole.size(); ++length)
            DecodeAnimation(std::span(whole.data(), length), kPlenty);
        for (int i = 0; i < 2000; ++i) {
            File damaged = whole;
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            damaged[random() % damaged.size()] ^= static_cast<std::uint8_t>(1 << random() % 8);
            const ReadAnimation read = DecodeAnimation(damaged, 1 << 16);
            EXPECT_NE(read.animation.has_value(), !read.error.empty());
        }
    }
}

} // namespace
} // namespace lumafold::test
