// Between names, which are UTF-8 on Windows and elsewhere the bytes that the system has, and the standard
// library's paths; and the parts of a name.
#pragma once

#include <filesystem>
#include <string>

namespace lumafold {

std::filesystem::path PathOf(const std::string& name);
std::string NameOf(const std::filesystem::path& path);

/// Whether a name ends as only a folder's does.
bool EndsInSeparator(const std::string& name);

/// The file's name in a path, and that without its suffix.
std::string FileNamePart(const std::string& path);
std::string Stem(const std::string& path);
/// The suffix in small letters, without its dot: "gif" of "A.GIF"; "" where there is none.
std::string LowerSuffix(const std::string& path);

} // namespace lumafold
