// The manual's page: the written texts, filled in with what the tables of settings and transitions say.
#pragma once

#include <string>

namespace lumafold::manual {

/// `texts` is the folder of the written texts. Throws a Fault.
std::string MakePage(const std::string& texts);

} // namespace lumafold::manual
