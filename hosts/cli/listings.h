// The tables a person asks for: transitions and settings.
#pragma once

#include <ostream>

namespace lumafold {

void ListTransitions(std::ostream& out);
void ListSettings(std::ostream& out);

} // namespace lumafold
