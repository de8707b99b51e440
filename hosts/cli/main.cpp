// The program lumafold; everything it does is in the library beside it.
#include <iostream>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/interrupt.h"

int main(int count, char** words) {
    lumafold::WatchForInterrupts();
    const std::vector<std::string> args(words + std::min(count, 1), words + count);
    return lumafold::RunCommandLine(args, std::cout, std::cerr);
}
