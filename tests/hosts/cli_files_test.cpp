#include <filesystem>
#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "codecs/decode.h"
#include "codecs/files.h"
#include "codecs/picture_kinds.h"
#include "tests/hosts/cli_fixture.h"

namespace lumafold::test {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class Files : public CommandLineTest {
protected:
    Bytes Read(const std::string& name) {
        Array<std::uint8_t> bytes;
        EXPECT_TRUE(ReadWholeFile(Path(name), bytes, error_)) << error_;
        return {bytes.begin(), bytes.end()};
    }
    bool Write(const std::string& name, const Bytes& bytes) {
        return WriteFileSafely(Path(name), bytes, error_);
    }

    std::string error_;
};

TEST_F(Files, ThatAreNoPicturesSaySo) {
    Put("empty", "");
    Put("text", "GIF is what this is about");
    fs::create_directory(Path("folder"));
    const std::pair<const char*, std::string> cases[] = {
        {"missing", "there is no such file or folder"},
        {"folder", "this is a folder"},
        {"empty", "the file is empty"},
        {"text", "this is no " + ReadablePictureKinds("or") + " picture"}};
    for (const auto& [name, text] : cases) {
        const DecodedPicture got = DecodePictureFile(Path(name), 0, 1000);
        EXPECT_FALSE(got.picture);
        EXPECT_EQ(got.error, text);
    }
}

#ifndef _WIN32

TEST_F(Files, ThatAreDevicesAreWrittenTo) {
    EXPECT_TRUE(WriteFileSafely("/dev/null", Bytes(10), error_));
    EXPECT_TRUE(fs::is_character_file("/dev/null")) << "a device must not be replaced by a file";
    EXPECT_FALSE(WriteFileSafely("/dev/full", Bytes(10), error_));
    EXPECT_EQ(error_, "the disk is full");
}

/// The status of a program that writes more than fits and is told so by a signal.
int WriteTooMuch(const std::string& path, void (*onSignal)(int)) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, onSignal);
        std::string error;
        _exit(WriteFileSafely(path, Bytes(100000), error) ? 1 : 2);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

// The old file stays and the temporary goes, whether writing fails or the handler ends the program amidst it.
TEST_F(Files, KeepTheOldBytesWhenTheNewDoNotFit) {
    ASSERT_TRUE(Write("a.gif", {5}));
    const auto removeAndLeave = [](int) {
        RemovePendingTemporaries();
        _exit(3);
    };
    EXPECT_EQ(WriteTooMuch(Path("a.gif"), SIG_IGN), 2);
    EXPECT_EQ(WriteTooMuch(Path("a.gif"), removeAndLeave), 3);
    EXPECT_EQ(Read("a.gif"), Bytes{5});
    EXPECT_EQ(Names(), std::vector<std::string>{"a.gif"});
}

#endif

} // namespace
} // namespace lumafold::test
