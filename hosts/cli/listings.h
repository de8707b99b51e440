// What "lumafold transitions", "lumafold settings" and "lumafold palettes" print.
#pragma once

#include <ostream>

namespace lumafold {

void ListTransitions(std::ostream& out);
void ListSettings(std::ostream& out);
void ListPalettes(std::ostream& out);

} // namespace lumafold
