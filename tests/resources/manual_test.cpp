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

TEST(Manual, EverySettingTransitionAndMessageIsExplained) {
    for (const SettingDescriptor& setting : SettingDescriptors())
        EXPECT_NE(Page().find("id=\"S_" + std::string(setting.key) + "\""), std::string::npos) << setting.key;
    // One row of each kind: its range, and its default.
    for (const char* cells : {"<td>100 to 32760</td><td>16129</td>", "<td>on or off</td><td>on</td>",
                              "&nbsp;</span>204, 204, 204</td>", "<td>always 17</td>"})
        EXPECT_NE(Page().find(cells), std::string::npos) << cells;
    for (int row = 0; row < kTransitionCount; ++row) {
        const std::string name = TransitionTable[static_cast<std::size_t>(row)].name;
        const std::size_t card = Page().find("</a>" + name + "</h3>\n<table class=\"plain\">");
        ASSERT_NE(card, std::string::npos) << name;
        const std::string text = Page().substr(card, Page().find("</div>", card) - card);
        EXPECT_NE(text.find("src=\"LUMAFOLD/" + std::to_string(row) + ".gif\""), std::string::npos) << name;
        EXPECT_EQ(Found(text, "<p>([^<]{41,})</p>").size(), 1u) << name;
        std::string keys;
        for (const std::string& key : Found(text, "<code>(\\w+)</code>"))
            keys += keys.empty() ? key : " " + key;
        EXPECT_EQ(keys, TransitionSettings(row)) << name;
    }
    for (const char* text : {LUMAFOLD_TEXT_READ_ERROR, LUMAFOLD_TEXT_MEMORY_ERROR, LUMAFOLD_TEXT_TASK_ERROR,
                             LUMAFOLD_TEXT_FRAME_ERROR, LUMAFOLD_TEXT_INTERNAL_ERROR,
                             LUMAFOLD_TEXT_CLIPBOARD_ERROR, LUMAFOLD_TEXT_HELP_ERROR})
        EXPECT_NE(Page().find("<dt>" + std::string(text) + "</dt>\n<dd>"), std::string::npos) << text;
}

TEST(Manual, EveryLinkAndPictureLeadsSomewhere) {
    std::set<std::string> anchors;
    for (const std::string& id : Found(Page(), " id=\"([^\"]+)\""))
        EXPECT_TRUE(anchors.insert(id).second) << id;
    for (const std::string wanted : {"OVERRIDE", "ADVANCED", "ABOUT"}) {
        EXPECT_TRUE(anchors.contains(wanted)) << wanted;
        EXPECT_NE(Page().find("name=\"" + wanted + "\""), std::string::npos) << wanted;
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

} // namespace
} // namespace lumafold
