// "lumafold sheet": what the transitions look like, on one picture.
#pragma once

#include <ostream>
#include <span>
#include <string>

namespace lumafold {

/// The exit status. Leaves the settings of the process as the command line set them.
int RunSheet(std::span<const std::string> words, std::ostream& out, std::ostream& err);

} // namespace lumafold
