// What "lumafold transitions", "lumafold settings" and "lumafold palettes" print.
#pragma once

#include <ostream>
#include <span>
#include <string>

#include "hosts/cli/console.h"

namespace lumafold {

void ListTransitions(std::ostream& out);
void ListPalettes(std::ostream& out);

/// "lumafold settings" with these words behind; the exit status. Throws Failure and Answer.
int RunSettings(std::span<const std::string> words, const Console& console);

} // namespace lumafold
