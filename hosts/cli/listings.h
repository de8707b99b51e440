// What "lumafold transitions", "lumafold settings" and "lumafold palettes" print.
#pragma once

#include <ostream>
#include <span>
#include <string>

namespace lumafold {

void ListTransitions(std::ostream& out);
void ListPalettes(std::ostream& out);

/// "lumafold settings" with these words behind; the exit status.
int RunSettings(std::span<const std::string> words, std::ostream& out, std::ostream& err);

} // namespace lumafold
