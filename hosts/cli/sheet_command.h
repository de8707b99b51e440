// "lumafold sheet": what the transitions look like, on one picture.
#pragma once

#include <span>
#include <string>

#include "hosts/cli/console.h"

namespace lumafold {

/// The exit status. Throws Failure and Answer.
int RunSheet(std::span<const std::string> words, const Console& console);

} // namespace lumafold
