// "lumafold build": reads the pictures, lets the engine build, writes what it handed over.
#pragma once

#include <ostream>
#include <span>
#include <string>

namespace lumafold {

/// The exit status. Leaves the settings of the process as the command line set them.
int RunBuild(std::span<const std::string> words, std::ostream& out, std::ostream& err);

} // namespace lumafold
