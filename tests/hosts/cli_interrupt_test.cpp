// Interrupts while building.
#ifdef _WIN32
#include <windows.h>
#else
#include <csignal>
#include <sstream>
#endif

#include "codecs/frame_changes.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/frames_folder.h"
#include "hosts/cli/interrupt.h"
#include "tests/hosts/cli_fixture.h"

namespace lumafold::test {
namespace {

#ifdef _WIN32

BOOL WINAPI StayDeaf(DWORD) { return TRUE; }

/// The status of the program when it is interrupted as soon as it has said `word` on its standard error.
/// Whoever is on its console hears of the interrupt.
DWORD InterruptedAt(const std::string& word, std::string commandLine) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE reading = nullptr, writing = nullptr;
    EXPECT_TRUE(CreatePipe(&reading, &writing, &inherited, 0));
    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = writing;
    PROCESS_INFORMATION program{};
    EXPECT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &start, &program));
    CloseHandle(writing);
    std::string said;
    char letter = 0;
    for (DWORD got = 0; said.find(word) == std::string::npos; said += letter) {
        if (!ReadFile(reading, &letter, 1, &got, nullptr) || got == 0) break;
    }
    EXPECT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
    EXPECT_EQ(WaitForSingleObject(program.hProcess, 20000), WAIT_OBJECT_0);
    DWORD status = 0;
    GetExitCodeProcess(program.hProcess, &status);
    TerminateProcess(program.hProcess, 1);
    for (const HANDLE handle : {reading, program.hThread, program.hProcess})
        CloseHandle(handle);
    return status;
}

TEST_F(CommandLineTest, AnInterruptLeavesNothingBehind) {
    FreeConsole(); // what a shell elsewhere lends its programs takes no interrupts
    ASSERT_TRUE(AllocConsole());
    ASSERT_TRUE(SetConsoleCtrlHandler(&StayDeaf, TRUE));
    PutPicture("a.bmp", 320, 240, 1); // enough to be at it for a while
    for (const std::string output : {"x.gif", "x/"}) {
        const std::string line =
            LUMAFOLD_PROGRAM "\" build -v \"" + Path("a.bmp") + "\" -o \"" + Path(output) + "\"";
        EXPECT_EQ(InterruptedAt("Building", "\"" + line), DWORD{kInterruptedStatus});
    }
    EXPECT_EQ(Names(), std::vector<std::string>{"a.bmp"});
}

#else

/// Takes text as a stream does, and interrupts the program as soon as it has read `word`.
class InterruptAt : public std::stringbuf {
public:
    explicit InterruptAt(std::string word) : word_(std::move(word)) {}

private:
    int sync() override {
        if (str().find(word_) != std::string::npos) std::raise(SIGINT);
        return 0;
    }
    std::string word_;
};

TEST_F(CommandLineTest, AnInterruptLeavesNothingBehind) {
    GTEST_FLAG_SET(death_test_style, "fast"); // the children share this folder
    PutPicture("a.bmp", 7, 5, 1);
    for (const char* output : {"x.gif", "x/"}) {
        const auto build = [&] {
            WatchForInterrupts();
            InterruptAt buffer("Remapping");
            std::ostream screen(&buffer);
            const std::vector<std::string> words{"build", "-v", Path("a.bmp"), "-o", Path(output)};
            RunCommandLine(words, {std::cin, screen, screen});
        };
        EXPECT_EXIT(build(), testing::ExitedWithCode(kInterruptedStatus), "");
    }
    // While files are written it waits until they are taken back.
    const auto write = [&] {
        WatchForInterrupts();
        {
            FramesFolder folder(Path("x"));
            folder.Begin({2, 2, 8, {}, 0}, 2);
            const OwnedDib picture = PlainPicture(2, 2, 0);
            folder.Add({*picture, 1, -1});
            std::raise(SIGINT);
            EXPECT_THROW(folder.Add({*picture, 1, -1}), AnimationError);
        }
        std::_Exit(Interrupted() && !testing::Test::HasFailure() ? 0 : 1);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(Names(), std::vector<std::string>{"a.bmp"});
}

#endif

} // namespace
} // namespace lumafold::test
