// The manual as shipped: the page agrees with the tables, and nothing it names is missing.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "resources/texts/strings.h"
#include "settings/settings.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

const std::string kFolder = std::string(LUMAFOLD_RESOURCES_DIR) + "/manual/";

std::string FileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

const std::string& Page() {
    static const std::string page = FileText(kFolder + LUMAFOLD_MANUAL);
    return page;
}

/// All texts that a pattern's first group finds.
std::vector<std::string> Found(const std::string& text, const char* pattern) {
    std::vector<std::string> found;
    const std::regex regex(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        found.push_back((*match)[1]);
    return found;
}

/// A page's text from a heading to what begins the next part.
std::string Between(const std::string& begin, const std::string& end) {
    const std::size_t from = Page().find(begin);
    if (from == std::string::npos) return {};
    return Page().substr(from, Page().find(end, from + begin.size()) - from);
}

TEST(Manual, EverySettingIsExplainedOnce) {
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        const std::string key = setting.key, anchor = "id=\"S_" + key + "\"";
        const std::size_t at = Page().find(anchor);
        ASSERT_NE(at, std::string::npos) << key;
        const std::size_t from = Page().rfind('\n', at);
        EXPECT_NE(Page().substr(from, Page().find('\n', at) - from).find("<code>" + key + "</code>"),
                  std::string::npos);
    }
    // One row of each kind: its range, and its default.
    for (const char* cells : {"<td>100 to 32760</td><td>16129</td>", "<td>on or off</td><td>on</td>",
                              "&nbsp;</span>204, 204, 204</td>", "<td>always 17</td>"})
        EXPECT_NE(Page().find(cells), std::string::npos) << cells;
}

TEST(Manual, EveryTransitionHasItsAnimationItsTextAndItsSettings) {
    const std::vector<std::string> names = Found(Page(), "<div class=\"card\">\n<h3>.*</a>(.*)</h3>");
    ASSERT_EQ(names.size(), static_cast<std::size_t>(kTransitionCount));
    for (int row = 0; row < kTransitionCount; ++row) {
        const std::string name = TransitionTable[static_cast<std::size_t>(row)].name;
        EXPECT_EQ(names[static_cast<std::size_t>(row)], name);
        const std::string card = Between("</a>" + name + "</h3>\n<table class=\"plain\">", "</div>");
        EXPECT_NE(card.find("src=\"LUMAFOLD/" + std::to_string(row) + ".gif\""), std::string::npos) << name;
        const auto texts = Found(card, "<p>([^<]+)</p>");
        ASSERT_EQ(texts.size(), 1u) << name;
        EXPECT_GT(texts[0].size(), 40u) << name;
        std::string keys;
        for (const std::string& key : Found(card, "<code>(\\w+)</code>"))
            keys += keys.empty() ? key : " " + key;
        EXPECT_EQ(keys, TransitionSettings(row)) << name;
    }
}

TEST(Manual, EveryLinkAndPictureLeadsSomewhere) {
    std::set<std::string> anchors;
    for (const std::string& id : Found(Page(), " id=\"([^\"]+)\""))
        EXPECT_TRUE(anchors.insert(id).second) << id;
    for (const char* wanted : {"OVERRIDE", "ADVANCED", "ABOUT"}) {
        EXPECT_TRUE(anchors.contains(wanted)) << wanted;
        EXPECT_EQ(Found(Page(), (std::string("name=\"(") + wanted + ")\"").c_str()).size(), 1u) << wanted;
    }
    for (const std::string& target : Found(Page(), "href=\"([^\"]*)\"")) {
        ASSERT_EQ(target.substr(0, 1), "#") << target << " is outside the page";
        EXPECT_TRUE(anchors.contains(target.substr(1))) << target;
    }
    std::size_t bytes = 0;
    for (const std::string& source : Found(Page(), "src=\"([^\"]*)\"")) {
        const std::string file = FileText(kFolder + source);
        EXPECT_EQ(file.substr(0, 6), "GIF89a") << source;
        EXPECT_NE(file.find("NETSCAPE2.0"), std::string::npos) << source << " does not loop";
        bytes += file.size();
    }
    EXPECT_LT(bytes, 3'000'000u) << "too much to ship";
    EXPECT_EQ(Page().find("://", Page().find("<head>")), std::string::npos) << "the page needs no network";
    EXPECT_EQ(Page().find("{{"), std::string::npos);
}

TEST(Manual, EveryMessageIsExplained) {
    for (const char* text : {LUMAFOLD_TEXT_READ_ERROR, LUMAFOLD_TEXT_MEMORY_ERROR, LUMAFOLD_TEXT_TASK_ERROR,
                             LUMAFOLD_TEXT_FRAME_ERROR, LUMAFOLD_TEXT_INTERNAL_ERROR,
                             LUMAFOLD_TEXT_CLIPBOARD_ERROR, LUMAFOLD_TEXT_HELP_ERROR})
        EXPECT_NE(Page().find("<dt>" + std::string(text) + "</dt>\n<dd>"), std::string::npos) << text;
}

} // namespace
} // namespace lumafold
