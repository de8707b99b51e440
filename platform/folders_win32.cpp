#include <windows.h>

#include <shlobj.h>

#include "platform/file_system.h"

namespace lumafold::file_system {

bool ApplicationDataFolder(char (&folder)[kPathBytes]) {
    static_assert(kPathBytes >= MAX_PATH);
    LPITEMIDLIST list = nullptr;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_APPDATA, &list))) return false;
    char path[MAX_PATH];
    const bool known = SHGetPathFromIDListA(list, path) != FALSE;
    CoTaskMemFree(list);
    if (known) lstrcpynA(folder, path, static_cast<int>(kPathBytes));
    return known;
}

} // namespace lumafold::file_system
