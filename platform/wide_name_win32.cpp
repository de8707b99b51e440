#include "platform/wide_name_win32.h"

#include <cwchar>

namespace lumafold::file_system {
namespace {

/// From here on some call of the system would refuse a path without the prefix: folders leave room for a
/// name of 12 letters.
constexpr std::size_t kNeedsPrefix = MAX_PATH - 12;

bool IsPrefixed(const wchar_t* path) {
    return std::wcsncmp(path, L"\\\\?\\", 4) == 0 || std::wcsncmp(path, L"\\\\.\\", 4) == 0;
}

} // namespace

WideName::WideName(const char* name) {
    const int room = static_cast<int>(kPathBytes);
    int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name, -1, text_, room);
    if (length == 0 && GetLastError() == ERROR_NO_UNICODE_TRANSLATION)
        length = MultiByteToWideChar(CP_ACP, 0, name, -1, text_, room);
    if (length == 0) text_[0] = 0;
    TakePrefix();
}

void WideName::TakePrefix() {
    if (std::wcslen(text_) < kNeedsPrefix || IsPrefixed(text_)) return;
    // Behind the prefix nothing is interpreted: no relative names, no dots, no slashes.
    wchar_t full[kPathBytes];
    const DWORD length = GetFullPathNameW(text_, static_cast<DWORD>(kPathBytes), full, nullptr);
    if (length == 0 || length >= kPathBytes) {
        text_[0] = 0;
        return;
    }
    const bool share = full[0] == L'\\' && full[1] == L'\\';
    std::wcscpy(text_, share ? L"\\\\?\\UNC" : L"\\\\?\\");
    std::wcscat(text_, share ? full + 1 : full);
}

} // namespace lumafold::file_system
