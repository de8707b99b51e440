// Paths as the system completes and shortens them, in UTF-8 of any length.
#pragma once

#include <string>
#include <vector>

namespace lumafold {

/// From the current folder, where it is not full already; as it was where the system knows none.
std::string FullPath(const std::string& path);

/// The folder that the program was started from, with "\" at its end; "" where the system does not tell.
std::string ProgramFolder();

/// A path as the plug-in can hold it: in the process's code page, in at most kMaxPath bytes with its zero.
/// Where the usual name does not fit, it is the system's short one.
struct PluginPath {
    std::string folder, name; ///< parted where no letter is cut; the folder ends in "\"
};
PluginPath PathForPlugin(const std::string& path);

/// The buffer of the choose-files command for these paths, ended as the plug-in expects; empty when they are
/// not in one folder, too many, or too long.
std::vector<char> ChosenNamesBuffer(const std::vector<std::string>& paths);

} // namespace lumafold
