// The list file: the order on screen comes back, and only what is still there.
#include "settings/list_file.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/failing_memory.h"
#include "tests/support/scratch_folder.h"

namespace lumafold::test {
namespace {

using Paths = std::vector<std::string>;

class ListFile : public testing::Test {
protected:
    std::string Path() const { return folder_.Path("lists/list.txt"); }
    /// A picture's file that is there.
    std::string Picture(const std::string& name) {
        folder_.Put(name, "");
        return folder_.Path(name);
    }
    Paths Read(const std::string& path) {
        ListFileReader reader(path.c_str());
        Paths paths;
        for (char line[kListLineBytes]; reader.Next(line);)
            paths.emplace_back(line);
        return paths;
    }

    ScratchFolder folder_;
};

TEST_F(ListFile, ReversedTwiceGivesTheOrderOnScreen) {
    Paths screen = {Picture("a b.png"), Picture("c.gif"), Picture("d.bmp"), Picture("c.gif")};
    ListFileWriter writer;
    for (auto path = screen.rbegin(); path != screen.rend(); ++path) {
        EXPECT_TRUE(writer.Add(path->c_str()));
        EXPECT_TRUE(writer.Add("")) << "pasted, so without a file";
    }
    EXPECT_TRUE(writer.Add(folder_.Path("gone").c_str()));
    ASSERT_TRUE(writer.Write(Path().c_str()));
    EXPECT_EQ(folder_.Get("lists/list.txt").find("gone"), std::string::npos);
    std::filesystem::remove(folder_.Path("d.bmp"));
    screen.erase(screen.begin() + 2);
    Paths restored;
    for (const std::string& path : Read(Path()))
        restored.insert(restored.begin(), path);
    EXPECT_EQ(restored, screen);
    EXPECT_TRUE(ListFileWriter().Write(Path().c_str()));
    EXPECT_EQ(folder_.Get("lists/list.txt"), "") << "with nothing to keep the file is empty";
    EXPECT_EQ(Read(Path()), Paths{});
}

TEST_F(ListFile, LinesEndAtTheirFirstEndAndAreReadInPieces) {
    const std::string a = Picture("a.png"), b = Picture("b.png");
    const std::string junk(kListLineBytes - 1, 'x');
    const std::pair<std::string, Paths> kCases[] = {
        {"", {}},
        {a, {a}},
        {a + "\r\n\r\n\n" + b + "\n", {a, b}},
        {a + "\r" + b + "\n", {a}},
        {"missing.png\n" + folder_.Path() + "\n" + b, {b}},
        {a + "x\n;" + a + "\n" + b + "\n", {b}},
        {junk + a + "\n", {a}},
        {junk + "\n" + a + "\n", {a}},
    };
    for (const auto& [text, expected] : kCases) {
        folder_.Put("list.txt", text);
        EXPECT_EQ(Read(folder_.Path("list.txt")), expected) << text;
    }
    EXPECT_EQ(Read(folder_.Path("missing.txt")), Paths{});
    EXPECT_EQ(Read(folder_.Path()), Paths{});
}

// The longest path that comes back is as long as a line without its end.
TEST_F(ListFile, KeepsPathsAsLongAsALine) {
    std::string path = folder_.Path("");
    path += std::string(kListLineBytes - 1 - path.size(), 'n');
    ASSERT_EQ(StoreFile(path.c_str(), {}), 0);
    const std::string next = Picture("a.png");
    ListFileWriter writer;
    EXPECT_TRUE(writer.Add(path.c_str()) && writer.Add(next.c_str()));
    ASSERT_TRUE(writer.Write(Path().c_str()));
    EXPECT_EQ(Read(Path()), (Paths{path, next}));
}

TEST_F(ListFile, IsNotWrittenFromHalfAList) {
    const std::string picture = Picture("a.png");
    ASSERT_TRUE(ListFileWriter().Write(Path().c_str()));
    const auto write = [&] {
        ListFileWriter writer;
        bool added = true;
        for (int i = 0; i < 500; ++i)
            added = writer.Add(picture.c_str());
        return std::pair(added, writer.Write(Path().c_str()));
    };
    const auto check = [&](const auto& written, bool missed) {
        EXPECT_EQ(written, std::pair(!missed, !missed));
        EXPECT_EQ(Read(Path()).size(), missed ? 0U : 500U);
    };
    EXPECT_GT(FailEachAllocation(write, check), 1);
}

} // namespace
} // namespace lumafold::test
