// The program lumafold; everything it does is in the library beside it.
#include <iostream>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/interrupt.h"

#ifdef _WIN32
// The command prompt leaves names like *.png to the program; the run-time library fills them in where this
// says so.
extern "C" int _dowildcard;
int _dowildcard = -1;
#endif

int main(int count, char** words) {
    lumafold::WatchForInterrupts();
    const std::vector<std::string> args(words + std::min(count, 1), words + count);
    return lumafold::RunCommandLine(args, {std::cin, std::cout, std::cerr});
}
