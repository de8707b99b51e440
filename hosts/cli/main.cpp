// The program lumafold; everything it does is in the library beside it.
#include <iostream>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/process_memory.h"

#ifdef _WIN32

#include <windows.h>

#include "hosts/common/wide_text.h"

// The command prompt leaves names like *.png to the program; the run-time library fills them in where this
// says so.
extern "C" int _dowildcard;
int _dowildcard = -1;

namespace {

/// Has a console show UTF-8, in which all names are, while it lives.
class Utf8Console {
public:
    Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    ~Utf8Console() { SetConsoleOutputCP(before_); }

private:
    UINT before_;
};

} // namespace

extern "C" int wmain(int count, wchar_t** words) {
    const Utf8Console console;
    lumafold::WatchForInterrupts();
    std::vector<std::string> args;
    for (int i = 1; i < count; ++i)
        args.push_back(lumafold::Utf8(words[i]));
    return lumafold::RunCommandLine(args, {std::cin, std::cout, std::cerr});
}

#else

int main(int count, char** words) {
    lumafold::ShareFreedMemory();
    lumafold::WatchForInterrupts();
    const std::vector<std::string> args(words + std::min(count, 1), words + count);
    return lumafold::RunCommandLine(args, {std::cin, std::cout, std::cerr});
}

#endif
