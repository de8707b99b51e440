#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "hosts/codecs/decode.h"
#include "hosts/codecs/files.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class Files : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::path(testing::TempDir()) / ("lumafold_files_" + std::to_string(getpid()));
        fs::create_directory(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    std::size_t Entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }
    Bytes Read(const std::string& name) {
        Bytes bytes;
        std::string error;
        EXPECT_TRUE(ReadWholeFile(Path(name), bytes, error)) << error;
        return bytes;
    }
    bool Write(const std::string& name, const Bytes& bytes) {
        return WriteFileSafely(Path(name), bytes, error_);
    }

    fs::path folder_;
    std::string error_;
};

TEST_F(Files, AreReplacedWhole) {
    const Bytes small{1, 2, 3}, large(200001, 77);
    for (const Bytes& bytes : {small, large, Bytes{}}) {
        ASSERT_TRUE(Write("a.gif", bytes)) << error_;
        EXPECT_EQ(Read("a.gif"), bytes);
        EXPECT_EQ(Entries(), 1U);
    }
    fs::permissions(Path("a.gif"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("a.gif", Path("link.gif"));
    ASSERT_TRUE(Write("link.gif", small));
    EXPECT_TRUE(fs::is_symlink(Path("link.gif")));
    EXPECT_EQ(Read("a.gif"), small);
    EXPECT_EQ(fs::status(Path("a.gif")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Files, LeaveNothingBehindOnFailure) {
    fs::create_directory(Path("folder"));
    EXPECT_FALSE(Write("folder", {1}));
    EXPECT_EQ(error_, "this is a folder");
    EXPECT_FALSE(Write("missing/a.gif", {1}));
    EXPECT_EQ(error_, "there is no such file or folder");
    EXPECT_EQ(Entries(), 1U);
    EXPECT_TRUE(WriteFileSafely("/dev/null", Bytes(10), error_));
    EXPECT_TRUE(fs::is_character_file("/dev/null")) << "a device must not be replaced by a file";
    EXPECT_FALSE(WriteFileSafely("/dev/full", Bytes(10), error_));
    EXPECT_EQ(error_, "the disk is full");
}

// The disk is full at the fifth kilobyte: the old file stays, the temporary goes.
TEST_F(Files, KeepTheOldBytesWhenTheNewDoNotFit) {
    ASSERT_TRUE(Write("a.gif", {5}));
    const testing::AssertionResult result = [&]() -> testing::AssertionResult {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit{4096, 4096};
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGXFSZ, SIG_IGN);
            _exit(Write("a.gif", Bytes(100000)) ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status == 0 ? testing::AssertionSuccess() : testing::AssertionFailure() << status;
    }();
    EXPECT_TRUE(result);
    EXPECT_EQ(Read("a.gif"), Bytes{5});
    EXPECT_EQ(Entries(), 1U);
}

// A signal in the middle of writing: the handler removes the temporary.
TEST_F(Files, AreNotLeftHalfWrittenByASignal) {
    ASSERT_TRUE(Write("a.gif", {5}));
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, [](int) {
            RemovePendingTemporary();
            _exit(3);
        });
        Write("a.gif", Bytes(100000));
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(Read("a.gif"), Bytes{5});
    EXPECT_EQ(Entries(), 1U);
}

TEST_F(Files, ThatAreNoPicturesSaySo) {
    std::ofstream(Path("empty"));
    std::ofstream(Path("text")) << "GIF is what this is about";
    fs::create_directory(Path("folder"));
    const std::pair<const char*, const char*> cases[] = {
        {"missing", "there is no such file or folder"},
        {"folder", "this is a folder"},
        {"empty", "the file is empty"},
        {"text", "this is no PNG, JPEG, GIF or BMP picture"}};
    for (const auto& [name, text] : cases) {
        const DecodedPicture got = DecodePictureFile(Path(name), 0, 1000);
        EXPECT_FALSE(got.picture);
        EXPECT_EQ(got.error, text);
    }
}

} // namespace
} // namespace lumafold
