#include "plugin/protocol/chosen_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumafold::test {
namespace {

using namespace std::string_literals;

/// The paths of exactly these bytes, with nothing behind them that could be read by mistake; "" for one that
/// is too long.
std::vector<std::string> PathsOf(const std::string& buffer) {
    const std::vector<char> bytes(buffer.begin(), buffer.end());
    const ChosenNames names(bytes.data(), bytes.size());
    std::vector<std::string> paths;
    char path[kMaxPath];
    for (std::size_t i = 0; i < names.Count(); ++i)
        paths.emplace_back(names.Path(i, path) ? path : "");
    EXPECT_FALSE(names.Path(names.Count(), path));
    return paths;
}

TEST(ChosenNames, MakesPathsInByteOrder) {
    struct Case {
        std::string buffer;
        std::vector<std::string> paths;
    };
    const std::string fits(kMaxPath - 1, 'p');
    const Case cases[] = {
        {"C:\\pictures\\one.gif\0\0"s, {"C:\\pictures\\one.gif"}},
        {"C:\\pictures\0c\0a\0b\0\0"s, {"C:\\pictures\\a", "C:\\pictures\\b", "C:\\pictures\\c"}},
        {"C:\\\0b\0\0trash\0\0"s, {"C:\\b"}},
        {"d\0a\0B\0_\0\xE4\0a\0\0"s, {"d\\B", "d\\_", "d\\a", "d\\a", "d\\\xE4"}},
        {"\0one\0\0"s, {}},
        {""s, {}},
        // Ends that are missing: what has none is no name.
        {"C:\\one.gif"s, {}},
        {"C:\\one.gif\0"s, {"C:\\one.gif"}},
        {"d\0a\0b"s, {"d\\a"}},
        // With its zero a path has 261 bytes.
        {fits + "\0\0"s, {fits}},
        {fits + "p\0\0"s, {""}},
        {"d\0"s + fits.substr(2) + "\0"s + fits.substr(1) + "\0\0"s, {"d\\" + fits.substr(2), ""}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(PathsOf(one.buffer), one.paths) << testing::PrintToString(one.buffer);
    }
}

TEST(ChosenNames, TakesTheFirstThatThereIsRoomFor) {
    std::string buffer = "d\0"s;
    for (int i = 0; i < 300; ++i)
        buffer += std::to_string(999 - i) + "\0"s;
    const std::vector<std::string> paths = PathsOf(buffer + "\0"s);
    ASSERT_EQ(paths.size(), kMaxChosenNames);
    EXPECT_EQ(paths.front(), "d\\740");
    EXPECT_EQ(paths.back(), "d\\999");
}

} // namespace
} // namespace lumafold::test
