#include <cstdlib>
#include <cstring>

#include "platform/file_system.h"

namespace lumafold::file_system {
namespace {

/// The absolute path in an environment variable with `behind` after it.
bool TakeFromEnvironment(const char* name, const char* behind, char (&folder)[kPathBytes]) {
    const char* path = std::getenv(name);
    if (path == nullptr || path[0] != '/') return false;
    const std::size_t length = std::strlen(path), more = std::strlen(behind);
    if (length + more >= kPathBytes) return false;
    std::memcpy(folder, path, length);
    std::memcpy(folder + length, behind, more + 1);
    return true;
}

} // namespace

bool ApplicationDataFolder(char (&folder)[kPathBytes]) {
    return TakeFromEnvironment("XDG_CONFIG_HOME", "", folder) ||
           TakeFromEnvironment("HOME", "/.config", folder);
}

} // namespace lumafold::file_system
