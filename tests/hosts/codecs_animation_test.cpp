#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "hosts/codecs/apng_writer.h"
#include "hosts/codecs/decode.h"
#include "hosts/codecs/gif_writer.h"
#include "hosts/codecs/mng_writer.h"
#include "tests/hosts/animation_player.h"
#include "tests/hosts/animations.h"
#include "tests/hosts/colours.h"

namespace lumafold::test {
namespace {

using Place = std::array<int, 4>;

constexpr struct Format {
    const char* name;
    std::vector<std::uint8_t> (*encode)(const Animation&, std::string&);
    Played (*play)(std::span<const std::uint8_t>);
    std::int32_t mostDelay;
} kGif{"GIF", EncodeGif, PlayGif, 65535}, kApng{"APNG", EncodeApng, PlayApng, 65535},
    kMng{"MNG", EncodeMng, PlayMng, std::numeric_limits<std::int32_t>::max()};

Played WriteAndPlay(const Format& format, const Animation& animation) {
    SCOPED_TRACE(format.name);
    std::string error;
    const Played played = format.play(format.encode(animation, error));
    EXPECT_EQ(error + played.problem, "");
    EXPECT_EQ(played.width, animation.width);
    EXPECT_EQ(played.height, animation.height);
    EXPECT_TRUE(played.endless);
    EXPECT_EQ(played.comment, animation.comment);
    const auto wanted = WantedScreens(animation);
    EXPECT_EQ(played.frames, static_cast<long>(wanted.size()));
    EXPECT_EQ(played.pictures.size(), wanted.size());
    for (std::size_t i = 0; i < std::min(wanted.size(), played.pictures.size()); ++i) {
        EXPECT_EQ(played.pictures[i].screen, wanted[i]) << "frame " << i;
        EXPECT_EQ(played.pictures[i].delay, std::clamp(animation.frames[i].delay, 0, format.mostDelay));
    }
    return played;
}

TEST(AnimationWriters, ShowEveryFrameAndKeepPalettes) {
    for (const auto& [name, animation] : AnimationCases()) {
        SCOPED_TRACE(name);
        const bool trueColour = name == "the same in true colour" || name.find("at 24") != std::string::npos;
        const bool colours = trueColour || name == "the same with a full palette";
        if (!trueColour) {
            EXPECT_EQ(WriteAndPlay(kGif, animation).depth, animation.paletteBits);
        }
        const Played apng = WriteAndPlay(kApng, animation);
        EXPECT_EQ(apng.colourType, colours ? 2 : 3);
        EXPECT_EQ(apng.depth, animation.frames.size() > 1 || colours ? 8 : animation.paletteBits);
        WriteAndPlay(kMng, animation);
    }
}

TEST(AnimationWriters, CropToWhatChangesInColour) {
    const Place wanted[] = {{0, 0, 61, 47}, {0, 0, 1, 1}, {5, 46, 4, 1}, {60, 0, 1, 1}, {0, 0, 1, 1}};
    const std::vector<AnimationCase> cases = AnimationCases();
    const auto twins = std::find_if(cases.begin(), cases.end(),
                                    [](const AnimationCase& each) { return each.name == "twin colours"; });
    for (const Format& format : {kGif, kApng, kMng}) {
        const Played played = WriteAndPlay(format, twins->animation);
        for (std::size_t i = 0; i < std::size(wanted); ++i) {
            const PlayedPicture& p = played.pictures.at(i);
            EXPECT_EQ((Place{p.left, p.top, p.width, p.height}), wanted[i]) << format.name << i;
        }
    }
}

TEST(AnimationWriters, RefuseWhatTheFormatsCannotHold) {
    const auto refused = [](const Format& format, const Animation& animation, std::string_view text) {
        std::string error;
        EXPECT_TRUE(format.encode(animation, error).empty());
        EXPECT_NE(error.find(text), std::string::npos) << format.name << ": " << error;
    };
    Animation animation;
    animation.width = animation.height = 4;
    for (const Format& format : {kGif, kApng, kMng})
        refused(format, animation, "no frames");
    AddFrame(
        animation, 24, [](int, int) { return 0U; }, 5);
    refused(kGif, animation, "true-colour");
    animation.frames.push_back({OwnedDib(), 5, -1});
    refused(kApng, animation, "no picture");
    animation.frames.clear();
    AddFrame(
        animation, 8, [](int, int) { return 0U; }, 5);
    animation.width = 65536;
    refused(kGif, animation, "65535");
    animation.width = 1000001;
    refused(kApng, animation, "1000000");
}

// Readers of still pictures get the first frame, and no transparency where nothing is left out.
TEST(ApngWriter, IsAStillPictureToo) {
    Animation animation = EmptyAnimation(3, 2, 8);
    AddFrame(
        animation, 8, [](int x, int y) { return static_cast<unsigned>(x * y); }, 5);
    EXPECT_EQ(WriteAndPlay(kApng, animation).pictures.at(0).transparent, -1);
    std::string error;
    const DecodedPicture still = DecodePicture(EncodeApng(animation, error), 0, 100);
    ASSERT_EQ(still.error, "");
    EXPECT_EQ(ColourAt(LockedDib(still.picture.Get()).Get(), 2, 1), animation.palette[2]);
}

TEST(GifWriter, IsExact) {
    Animation animation = EmptyAnimation(1, 1, 1);
    animation.palette[0] = {'r', 'e', 'd'};
    animation.palette[1] = {'s', 'k', 'y'};
    AddFrame(
        animation, 1, [](int, int) { return 1U; }, 258);
    const std::string wanted("GIF89a\1\0\1\0\xF0\0\0redsky\x21\xFF\x0BNETSCAPE2.0\3\1\0\0\0"
                             "\x21\xF9\4\4\2\1\0\0\x2C\0\0\0\0\1\0\1\0\0\2\2\x4C\1\0;",
                             62);
    std::string error;
    const std::vector<std::uint8_t> file = EncodeGif(animation, error);
    EXPECT_EQ(std::string(file.begin(), file.end()), wanted);
}

// The code table fills and starts again at every possible length of what follows.
TEST(GifWriter, ShowsPicturesWhoseCodesEndAnywhere) {
    const auto one = [](int width, int bits, const std::function<unsigned(int, int)>& pixelAt) {
        Animation animation = EmptyAnimation(width, 1, bits);
        AddFrame(animation, bits, pixelAt, 5);
        WriteAndPlay(kGif, animation);
    };
    for (const int bits : {1, 2, 5, 8}) {
        for (int width = 1; width <= 40; ++width)
            one(width, bits, [](int x, int) { return static_cast<unsigned>(x % 2); });
    }
    std::mt19937 random(7);
    for (int width = 3820; width <= 3870; ++width)
        one(width, 8, [&](int, int) { return static_cast<unsigned>(random() & 255); });
}

TEST(GifWriter, LeavesOutUnchangedPixelsWhereThatPacksBetter) {
    Animation made = EmptyAnimation(100, 100, 8);
    const auto noise = [](int x, int y) {
        return static_cast<unsigned>((x * 7919 + y * 104729 + x * y * 31) % 251);
    };
    const auto marked = [&](unsigned mark) {
        return [=](int x, int y) { return x == y && x % 99 == 0 ? mark : noise(x, y); };
    };
    AddFrame(made, 8, noise, 5);
    AddFrame(made, 8, marked(252), 5, 255);
    AddFrame(made, 8, marked(251), 5);
    AddFrame(
        made, 8, [](int x, int y) { return (x * y) % 3 == 0 ? 9U : 10U; }, 5);
    AddFrame(
        made, 8, [](int, int) { return 9U; }, 5, 255);
    const Played played = WriteAndPlay(kGif, made);
    EXPECT_EQ(played.pictures.at(1).transparent, 255);
    EXPECT_NE(played.pictures.at(2).transparent, -1) << "an index that the frame draws nowhere will do";
    EXPECT_EQ(played.pictures.at(4).transparent, -1) << "one colour packs better than one with holes";
}

TEST(AnimationWriters, PlaceSmallFramesAndKeepHolesOpen) {
    Animation made = EmptyAnimation(9, 8, 3);
    const auto column = [](int x, int) { return static_cast<unsigned>(x % 8); };
    AddFrame(
        made, 4, [](int x, int y) { return (x + y) % 2 == 0 ? 7U : 4U; }, 5, 7, 3, 4);
    AddFrame(made, 4, column, 5, 7);
    AddFrame(
        made, 4, [](int, int) { return 7U; }, 5, -1, 2, 2); // here the same index is a colour
    AddFrame(
        made, 4, [](int x, int) { return x == 0 ? 7U : 1U; }, 5, 7);
    for (const Format& format : {kGif, kApng, kMng})
        WriteAndPlay(format, made);
}

TEST(GifWriter, WidensTheTableForIndexesBeyondIt) {
    Animation made = EmptyAnimation(5, 5, 5);
    const auto to44 = [](int x, int y) { return static_cast<unsigned>(x * 5 + y + 20); };
    AddFrame(made, 8, to44, 5);
    AddFrame(
        made, 8, [&](int x, int y) { return x == y && x % 4 == 0 ? 1 : to44(x, y); }, 5, 200);
    EXPECT_EQ(WriteAndPlay(kGif, made).depth, 6);
}

} // namespace
} // namespace lumafold::test
