#include "hosts/web/workshop.h"

#include <gtest/gtest.h>

#include "codecs/png_writer.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using Json = nlohmann::json;

class WorkshopTest : public testing::Test {
protected:
    Json Do(const Json& order) { return Json::parse(workshop_.Do(order.dump())); }
    Json Add(int number, const OwnedDib& picture, const Json& fit = {{"mode", "own"}}) {
        std::string error;
        workshop_.Input() = EncodePng(picture.Get(), error);
        return Do({{"do", "add"}, {"number", number}, {"matte", 255}, {"fit", fit}, {"show", true}});
    }
    Json Build(const Json& settings, const Json& more = Json::object()) {
        Json order = {{"do", "build"},
                      {"kind", "gif"},
                      {"settings", settings},
                      {"entries", {{{"picture", 1}, {"pause", 7}}, {{"picture", 2}, {"delay", 3}}}}};
        order.update(more);
        return Do(order);
    }

    std::vector<std::string> captions_;
    Workshop workshop_{
        [this](const char* caption, std::int32_t, std::int32_t) { captions_.push_back(caption); }};
};

TEST_F(WorkshopTest, TablesAreWholeAndSettingsGoThroughTheirFile) {
    const Json tables = Do({{"do", "tables"}})["tables"];
    EXPECT_EQ(tables["transitions"].size(), 33U);
    EXPECT_EQ(tables["kinds"][0]["id"], "gif");
    for (const Json& setting : tables["settings"]) {
        EXPECT_LE(setting["minimum"], setting["default"]) << setting;
        EXPECT_LE(setting["default"], setting["maximum"]) << setting;
    }
    const Json text = Do(
        {{"do", "write settings"}, {"values", {{"TransitionIrisStep", 9}, {"PatchLevel", "fixed"}}}})["text"];
    const Json values = Do({{"do", "read settings"}, {"text", text}})["values"];
    EXPECT_EQ(values["TransitionIrisStep"], 9);
    EXPECT_EQ(values["TransitionSpikeStep"], 5);
}

TEST_F(WorkshopTest, PicturesComeToTheirSize) {
    const Json added =
        Add(1, NoisePicture(40, 20, 24, 1), {{"mode", "contain"}, {"width", 10}, {"height", 10}});
    EXPECT_EQ(added["width"], 40);
    EXPECT_EQ(added["shownHeight"], 10);
    ASSERT_EQ(workshop_.Output().size(), 400U);
    EXPECT_EQ(workshop_.Output()[0], 255); // the matte above it, 0x00BBGGRR
    EXPECT_EQ(workshop_.Output()[1], 0);
    workshop_.Input() = {1, 2, 3};
    EXPECT_TRUE(
        Do({{"do", "add"}, {"number", 1}, {"matte", 0}, {"fit", {{"mode", "own"}}}}).contains("error"));
    EXPECT_TRUE(Build(Json::object()).contains("error")); // the one before it went
}

TEST_F(WorkshopTest, BuildsShowsAndPacks) {
    Add(1, NoisePicture(40, 20, 24, 1));
    Add(2, NoisePicture(40, 20, 24, 2));
    const int solarize = 26;
    const Json settings = {
        {"TransitionType", solarize}, {"TransitionSolarizeStep", 64}, {"TransitionDelay", 1}};
    const Json built = Build(settings);
    ASSERT_TRUE(built.contains("delays")) << built;
    EXPECT_EQ(built["delays"][0], 7);
    EXPECT_EQ(built["delays"][1], 2) << "long enough to be played";
    EXPECT_EQ(built["delays"].back(), 3);
    EXPECT_FALSE(built["palette"].empty());
    EXPECT_NE(std::find(captions_.begin(), captions_.end(), "Remapping"), captions_.end());
    EXPECT_FALSE(Do({{"do", "frame"}, {"index", 1}}).contains("error"));
    EXPECT_EQ(workshop_.Output().size(), 40U * 20 * 4);
    EXPECT_TRUE(Do({{"do", "frame"}, {"index", 1000}}).contains("error"));
    EXPECT_FALSE(Do({{"do", "pack"}}).contains("error"));
    EXPECT_EQ(workshop_.Output()[0], 'G');
    captions_.clear();
    EXPECT_TRUE(Build(settings, {{"fullColour", true}})["palette"].empty());
    EXPECT_EQ(std::find(captions_.begin(), captions_.end(), "Supercompressing"), captions_.end());
    EXPECT_TRUE(Do({{"do", "pack"}}).contains("error")); // no GIF holds that
}

TEST_F(WorkshopTest, LengthsShrinkWithThePictures) {
    Add(1, NoisePicture(64, 64, 24, 1));
    Add(2, NoisePicture(64, 64, 24, 2));
    const int alphaTile = 4;
    const auto frames = [&](int size, int percent) {
        const Json settings = {{"TransitionType", alphaTile}, {"TransitionAlphaTileSize", size}};
        return Build(settings, {{"lengthPercent", percent}})["delays"].size();
    };
    EXPECT_EQ(frames(43, 50), frames(22, 100));
    EXPECT_NE(frames(22, 100), frames(21, 100));
    EXPECT_EQ(frames(4, 1), frames(2, 100)); // not below what the setting allows
}

TEST_F(WorkshopTest, MistakesAreTold) {
    EXPECT_TRUE(Json::parse(workshop_.Do("no JSON")).contains("error"));
    EXPECT_TRUE(Do({{"do", "dance"}}).contains("error"));
    EXPECT_TRUE(Do({{"do", "pack"}}).contains("error"));
    EXPECT_TRUE(
        Do({{"do", "build"}, {"kind", "gif"}, {"settings", {{"TransitionType", "x"}}}}).contains("error"));
}

} // namespace
} // namespace lumafold::test
