#include "platform/files.h"
#include "platform/folders.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>
#ifdef __linux__
#include <unistd.h>
#endif

#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"

namespace lumafold::test {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class PlatformFiles : public testing::Test {
protected:
    FileError Store(const std::string& path, const std::string& text) {
        const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        const std::span<const std::uint8_t> pieces[] = {
            bytes.first(text.size() / 3), {}, bytes.subspan(text.size() / 3)};
        return StoreFile(path.c_str(), pieces);
    }
    /// What LoadFile gives, or its error.
    std::string Load(const std::string& path, std::size_t most = 1000000) {
        Array<std::uint8_t> bytes;
        if (const FileError error = LoadFile(path.c_str(), bytes, most)) return std::strerror(error);
        return {bytes.begin(), bytes.end()};
    }

    ScratchFolder folder_;
};

TEST_F(PlatformFiles, AreReplacedAndReadWhole) {
    const std::string path = folder_.Path("a.bin");
    for (const std::size_t length : {0U, 1U, 65535U, 65536U, 65537U, 200001U, 3U}) {
        const std::string text(length, 'x');
        ASSERT_EQ(Store(path, text), 0);
        EXPECT_EQ(Load(path), text);
        EXPECT_EQ(Load(path, length), text);
        if (length > 0) {
            EXPECT_EQ(Load(path, length - 1), std::strerror(EFBIG));
        }
    }
    EXPECT_EQ(folder_.Names(), Names{"a.bin"});
}

#ifdef __linux__
TEST_F(PlatformFiles, ArePipesByAnyName) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    EXPECT_EQ(Store("/dev/fd/" + std::to_string(ends[1]), "abc"), 0);
    char read[4] = "";
    EXPECT_EQ(::read(ends[0], read, 3), 3);
    EXPECT_STREQ(read, "abc");
    EXPECT_EQ(Store("/dev/fd/" + std::to_string(ends[1]), "abc"), 0);
    EXPECT_EQ(Load("/dev/fd/" + std::to_string(ends[0]), 2), std::strerror(EFBIG)) << "none tells its length";
    for (const int end : ends)
        close(end);
}
#endif

TEST_F(PlatformFiles, ThatCannotBeWrittenStayAsTheyAre) {
    folder_.Put("fixed.ini", "old");
    fs::permissions(folder_.Path("fixed.ini"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    fs::create_directory(folder_.Path("folder"));
    const std::pair<const char*, FileError> kCases[] = {
        {"fixed.ini", EACCES}, {"folder", EISDIR}, {"missing/a.ini", ENOENT}};
    for (const auto& [name, error] : kCases)
        EXPECT_EQ(Store(folder_.Path(name), "new"), error) << name;
    EXPECT_NE(Store(folder_.Path("fixed.ini/a.ini"), "new"), 0);
    EXPECT_NE(Store("", "new"), 0);
    EXPECT_NE(Store(folder_.Path(std::string(kPathBytes, 'a')), "new"), 0);
    EXPECT_EQ(folder_.Get("fixed.ini"), "old");
    EXPECT_EQ(folder_.Names(), (Names{"fixed.ini", "folder"})) << "a temporary was left";
}

// The temporary stands beside the target and must not have a longer path than the system takes.
TEST_F(PlatformFiles, MayHaveTheLongestNamesAndOtherLetters) {
    const std::size_t longest = kPathBytes - 1;
    std::string path = folder_.Path("a");
    while (path.size() + 60 < longest)
        path += kFolderSeparator + std::string(40, 'f');
    MakeFoldersAbove((path + kFolderSeparator).c_str());
    path += kFolderSeparator;
    path += std::string(longest - path.size(), 'n');
    ASSERT_EQ(Store(path, "long"), 0) << path;
    ASSERT_EQ(Store(path, "longer"), 0);
    EXPECT_EQ(Load(path), "longer");
    EXPECT_TRUE(FileExists(path.c_str()));
    EXPECT_NE(Store(path + "n", "too long"), 0);

    const std::string umlauts = folder_.Path("") + "\xE4\xF6\xFC.ini";
    ASSERT_EQ(Store(umlauts, "letters"), 0);
    EXPECT_EQ(Load(umlauts), "letters");
    std::remove(umlauts.c_str());
}

TEST_F(PlatformFiles, GetTheirMissingFoldersOnRequest) {
    const std::string path = folder_.Path("one/two/a.ini");
    MakeFoldersAbove(path.c_str());
    MakeFoldersAbove(path.c_str());
    EXPECT_EQ(Store(path, "text"), 0);
    EXPECT_EQ(folder_.Names(), (Names{"one", "one/two", "one/two/a.ini"}));
    MakeFoldersAbove(folder_.Path("one/two/a.ini/three/b.ini").c_str());
    MakeFoldersAbove("a.ini");
    MakeFoldersAbove("");
    EXPECT_EQ(folder_.Names().size(), 3U);
}

TEST_F(PlatformFiles, NeedNoMoreMemoryThanThereIs) {
    const std::string path = folder_.Path("a.bin");
    ASSERT_EQ(Store(path, std::string(1000, 'x')), 0);
    Array<std::uint8_t> bytes;
    allocation_hooks::FailNth(1);
    EXPECT_EQ(LoadFile(path.c_str(), bytes, 1000), ENOMEM);
    allocation_hooks::FailNth(0);
}

#ifdef _WIN32

TEST(Folders, AreTheShellsWithOursInside) {
    const std::string data = DataFolderPath("A.INI"), list = ListFolderPath("B.TXT");
    const std::string behind = "\\Brackenfield\\A.INI";
    ASSERT_GT(data.size(), behind.size());
    const std::string roaming = data.substr(0, data.size() - behind.size());
    EXPECT_EQ(data, roaming + behind);
    EXPECT_EQ(list, roaming + "\\Brackenfield\\Lumafold\\B.TXT");
    EXPECT_TRUE(fs::is_directory(roaming)) << roaming;
    EXPECT_STREQ(DataFolderPath(std::string(kPathBytes, 'a').c_str()), "");
}

#else

TEST_F(PlatformFiles, BehindLinksAreReplacedAndKeepTheirMode) {
    folder_.Put("a.ini", "old");
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    fs::permissions(folder_.Path("a.ini"), mode);
    fs::create_directory(folder_.Path("folder"));
    fs::create_symlink("../a.ini", folder_.Path("folder/first"));
    fs::create_symlink("folder/first", folder_.Path("second"));
    fs::create_symlink(folder_.Path("new.ini"), folder_.Path("dangling"));
    fs::create_symlink("loop", folder_.Path("loop"));
    EXPECT_EQ(Store(folder_.Path("second"), "new"), 0);
    EXPECT_EQ(Store(folder_.Path("dangling"), "newer"), 0);
    EXPECT_EQ(Store(folder_.Path("loop"), "newest"), ELOOP);
    EXPECT_EQ(folder_.Get("a.ini") + folder_.Get("new.ini"), "newnewer");
    EXPECT_EQ(fs::status(folder_.Path("a.ini")).permissions(), mode);
    for (const char* link : {"folder/first", "second", "dangling", "loop"})
        EXPECT_TRUE(fs::is_symlink(folder_.Path(link))) << link;
    EXPECT_EQ(folder_.Names().size(), 7U);
}

#ifndef __EMSCRIPTEN__ // one thread
// What a signal handler removes while one file is written and another could not be: the first one's
// temporary.
TEST_F(PlatformFiles, OneWritersFailureLeavesTheOthersTemporaryKnown) {
    const std::string path = folder_.Path("large.bin"), text(std::size_t{32} << 20, 'x');
    FileError stored = 0;
    // A writer may be done before it is seen.
    for (int attempt = 0; attempt < 20 && stored == 0; ++attempt) {
        std::atomic<bool> ended = false;
        const std::jthread writer([&] {
            stored = Store(path, text);
            ended = true;
        });
        const auto seen = [&] {
            const Names names = folder_.Names();
            return std::any_of(names.begin(), names.end(),
                               [](const auto& name) { return name.ends_with(".tmp"); });
        };
        while (!ended && !seen())
            std::this_thread::yield();
        EXPECT_EQ(Store(folder_.Path("missing/a.ini"), "new"), ENOENT);
        RemovePendingTemporaries();
    }
    EXPECT_EQ(stored, ENOENT) << "its temporary was still there";
}
#endif

void SetVariable(const char* name, const char* value) {
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

TEST(Folders, ComeFromTheEnvironment) {
    const struct {
        const char *config, *home, *data, *list;
    } kCases[] = {
        {"/c", "/h", "/c/Brackenfield/X", "/c/Brackenfield/Lumafold/X"},
        {"/c/", "/h", "/c/Brackenfield/X", "/c/Brackenfield/Lumafold/X"},
        {nullptr, "/h", "/h/.config/Brackenfield/X", "/h/.config/Brackenfield/Lumafold/X"},
        {"c", "/h", "/h/.config/Brackenfield/X", "/h/.config/Brackenfield/Lumafold/X"},
        {nullptr, nullptr, "Brackenfield/X", "Lumafold/X"},
        {nullptr, "h", "Brackenfield/X", "Lumafold/X"},
    };
    for (const auto& row : kCases) {
        SetVariable("XDG_CONFIG_HOME", row.config);
        SetVariable("HOME", row.home);
        EXPECT_STREQ(DataFolderPath("X"), row.data);
        EXPECT_STREQ(ListFolderPath("X"), row.list);
    }
    SetVariable("XDG_CONFIG_HOME", ("/" + std::string(kPathBytes - 16, 'c')).c_str());
    EXPECT_TRUE(*DataFolderPath("X") == 0) << "one letter too long";
    unsetenv("XDG_CONFIG_HOME");
}

#endif

} // namespace
} // namespace lumafold::test
