// Between names, as the command line and platform/files have them, and the standard library's paths.
#pragma once

#include <filesystem>
#include <string>

namespace lumafold {

/// On Windows a name is in the system's code page, and the library would take it for UTF-8.
std::filesystem::path PathOf(const std::string& name);
std::string NameOf(const std::filesystem::path& path);

/// Whether a name ends as only a folder's does.
bool EndsInSeparator(const std::string& name);

} // namespace lumafold
