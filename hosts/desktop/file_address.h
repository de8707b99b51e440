// The address of a file as a browser takes it.
#pragma once

#include <string>

namespace lumafold {

/// "file:///C:/a%20b.html#anchor" for a full Windows path in UTF-8; `anchor` is "" or begins with "#".
std::string FileAddress(const std::string& path, const std::string& anchor);

} // namespace lumafold
