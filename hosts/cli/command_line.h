// The program in one call, so that tests run it without starting a process.
#pragma once

#include <ostream>
#include <span>
#include <string>

namespace lumafold {

/// `args` are the words behind the program's name. What was asked for goes to `out`, progress and errors to
/// `err`. The exit status: 0, 1 for a failure, 2 for a mistake in the words, kInterruptedStatus.
int RunCommandLine(std::span<const std::string> args, std::ostream& out, std::ostream& err);

} // namespace lumafold
