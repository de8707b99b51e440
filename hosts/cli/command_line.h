// The program in one call, so that tests run it without starting a process.
#pragma once

#include <span>
#include <string>

#include "hosts/cli/console.h"

namespace lumafold {

/// `args` are the words behind the program's name. The exit status: 0, kFailed, kMistake, kInterruptedStatus.
int RunCommandLine(std::span<const std::string> args, const Console& console);

} // namespace lumafold
