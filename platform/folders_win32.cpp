#include <windows.h>

#include <shlobj.h>

#include "platform/file_system.h"

namespace lumafold::file_system {

bool ApplicationDataFolder(char (&folder)[kPathBytes]) {
    LPITEMIDLIST list = nullptr;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_APPDATA, &list))) return false;
    wchar_t path[MAX_PATH];
    const bool known = SHGetPathFromIDListW(list, path) != FALSE;
    CoTaskMemFree(list);
    // UTF-8 never takes more than three bytes for one of these.
    static_assert(kPathBytes >= 3 * MAX_PATH);
    return known && WideCharToMultiByte(CP_UTF8, 0, path, -1, folder, static_cast<int>(kPathBytes), nullptr,
                                        nullptr) != 0;
}

} // namespace lumafold::file_system
