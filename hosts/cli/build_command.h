// "lumafold build": reads the pictures, lets the engine build, writes what it handed over.
#pragma once

#include <span>
#include <string>

#include "hosts/cli/console.h"

namespace lumafold {

/// The exit status. Throws Failure and Answer.
int RunBuild(std::span<const std::string> words, const Console& console);

} // namespace lumafold
