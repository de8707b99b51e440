#include <gtest/gtest.h>

#include "hosts/codecs/mng_writer.h"
#include "tests/hosts/animations.h"
#include "tests/hosts/png_player.h"

namespace lumafold {
namespace {

TEST(MngWriter, ShowsEveryFrame) {
    for (const auto& [name, animation] : test::AnimationCases()) {
        SCOPED_TRACE(name);
        std::string error;
        const test::PlayedPng played = test::PlayMng(EncodeMng(animation, error));
        EXPECT_EQ(error, "");
        ASSERT_EQ(played.problem, "");
        EXPECT_TRUE(played.endless);
        EXPECT_EQ(played.comment, animation.comment);
        EXPECT_EQ(played.frames, static_cast<long>(animation.frames.size()));
        const auto wanted = test::WantedScreens(animation);
        ASSERT_EQ(played.pictures.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(played.pictures[i].screen, wanted[i]) << "frame " << i;
            EXPECT_EQ(played.pictures[i].delay, std::max(animation.frames[i].delay, 0));
        }
    }
}

TEST(MngWriter, RefusesAnEmptyAnimation) {
    std::string error;
    EXPECT_TRUE(EncodeMng({}, error).empty());
    EXPECT_NE(error.find("no frames"), std::string::npos) << error;
}

} // namespace
} // namespace lumafold
