#include <gtest/gtest.h>

#include "hosts/codecs/apng_writer.h"
#include "hosts/codecs/decode.h"
#include "tests/hosts/animations.h"
#include "tests/hosts/png_player.h"

namespace lumafold {
namespace {

using test::PlayedPng;

TEST(ApngWriter, ShowsEveryFrame) {
    for (const auto& [name, animation] : test::AnimationCases()) {
        SCOPED_TRACE(name);
        std::string error;
        const PlayedPng played = test::PlayApng(EncodeApng(animation, error));
        EXPECT_EQ(error, "");
        ASSERT_EQ(played.problem, "");
        EXPECT_TRUE(played.endless);
        EXPECT_EQ(played.comment, animation.comment);
        EXPECT_EQ(played.frames, static_cast<long>(animation.frames.size()));
        const auto wanted = test::WantedScreens(animation);
        ASSERT_EQ(played.pictures.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(played.pictures[i].screen, wanted[i]) << "frame " << i;
            EXPECT_EQ(played.pictures[i].delay, std::clamp(animation.frames[i].delay, 0, 65535));
        }
    }
}

TEST(ApngWriter, KeepsPalettesAndCropsFrames) {
    using Place = std::array<int, 4>;
    for (const auto& [name, animation] : test::AnimationCases()) {
        SCOPED_TRACE(name);
        std::string error;
        const PlayedPng played = test::PlayApng(EncodeApng(animation, error));
        const bool colours = name == "the same with a full palette" || name == "the same in true colour" ||
                             name.find("24") != std::string::npos;
        EXPECT_EQ(played.colourType, colours ? 2 : 3);
        EXPECT_EQ(played.depth, animation.frames.size() > 1 || colours ? 8 : animation.paletteBits);
        if (name == "twin colours") {
            const Place wanted[] = {{0, 0, 61, 47}, {0, 0, 1, 1}, {5, 46, 4, 1}, {60, 0, 1, 1}};
            for (std::size_t i = 0; i < std::size(wanted); ++i) {
                const auto& p = played.pictures.at(i);
                EXPECT_EQ((Place{p.left, p.top, p.width, p.height}), wanted[i]) << i;
            }
        }
    }
}

// Readers of still pictures get the first frame, and no transparency where nothing is left out.
TEST(ApngWriter, IsAStillPictureToo) {
    Animation animation;
    animation.width = 3;
    animation.height = 2;
    animation.palette[1] = {9, 8, 7};
    animation.frames.push_back({OwnedDib(DibCreate(3, 2, &animation.palette, 8)), 5, -1});
    DibSetPixel(LockedDib(animation.frames[0].image.Get()).Get(), 2, 1, 1);
    std::string error;
    const std::vector<std::uint8_t> file = EncodeApng(animation, error);
    EXPECT_FALSE(test::PlayApng(file).pictures.at(0).transparency);
    const DecodedPicture still = DecodePicture(file, 0, 100);
    ASSERT_EQ(still.error, "");
    const LockedDib lock(still.picture.Get());
    Palette palette;
    DibGetPalette(lock.Get(), palette);
    EXPECT_EQ(palette[DibGetPixel(lock.Get(), 2, 1)], (Rgb{9, 8, 7}));
}

TEST(ApngWriter, RefusesWhatItCannotHold) {
    std::string error;
    Animation animation;
    animation.width = animation.height = 1;
    EXPECT_TRUE(EncodeApng(animation, error).empty());
    EXPECT_NE(error.find("no frames"), std::string::npos) << error;
    animation.frames.push_back({OwnedDib(), 5, -1});
    EXPECT_TRUE(EncodeApng(animation, error).empty());
    EXPECT_NE(error.find("no picture"), std::string::npos) << error;
    animation.width = 1000001;
    EXPECT_TRUE(EncodeApng(animation, error).empty());
    EXPECT_NE(error.find("1000000"), std::string::npos) << error;
}

} // namespace
} // namespace lumafold
