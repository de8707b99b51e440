#include "platform/folders.h"

#include <cstring>
#include <initializer_list>

#include "platform/file_system.h"

namespace lumafold {
namespace {

/// The parts behind each other, with a separator between two that have none.
const char* Join(char (&path)[kPathBytes], std::initializer_list<const char*> parts) {
    std::size_t used = 0;
    for (const char* part : parts) {
        const std::size_t length = std::strlen(part);
        if (used + 1 + length >= kPathBytes) return "";
        if (used > 0 && !file_system::IsSeparator(path[used - 1])) path[used++] = kFolderSeparator;
        std::memcpy(path + used, part, length);
        used += length;
    }
    path[used] = 0;
    return path;
}

} // namespace

const char* DataFolderPath(const char* fileName) {
    static char path[kPathBytes];
    char folder[kPathBytes];
    if (!file_system::ApplicationDataFolder(folder)) return Join(path, {"Brackenfield", fileName});
    return Join(path, {folder, "Brackenfield", fileName});
}

const char* ListFolderPath(const char* fileName) {
    static char path[kPathBytes];
    char folder[kPathBytes];
    if (!file_system::ApplicationDataFolder(folder)) return Join(path, {"Lumafold", fileName});
    return Join(path, {folder, "Brackenfield", "Lumafold", fileName});
}

} // namespace lumafold
