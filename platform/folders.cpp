#include "platform/folders.h"

#include <cstring>
#include <initializer_list>

#include "platform/file_system.h"

namespace lumafold {
namespace {

/// The parts behind each other, with a separator between two that have none. Empty ones come first.
const char* Join(char (&path)[kPathBytes], std::initializer_list<const char*> parts) {
    std::size_t used = 0;
    for (const char* part : parts) {
        const std::size_t length = std::strlen(part);
        if (used + 1 + length >= kPathBytes) return "";
        if (used > 0 && std::strchr(kSeparators, path[used - 1]) == nullptr) path[used++] = kFolderSeparator;
        std::memcpy(path + used, part, length);
        used += length;
    }
    path[used] = 0;
    return path;
}

} // namespace

const char* DataFolderPath(const char* fileName) {
    static char path[kPathBytes];
    char folder[kPathBytes] = "";
    file_system::ApplicationDataFolder(folder);
    return Join(path, {folder, "Brackenfield", fileName});
}

const char* ListFolderPath(const char* fileName) {
    static char path[kPathBytes];
    char folder[kPathBytes] = "";
    const bool known = file_system::ApplicationDataFolder(folder);
    return Join(path, {folder, known ? "Brackenfield" : "", "Lumafold", fileName});
}

} // namespace lumafold
