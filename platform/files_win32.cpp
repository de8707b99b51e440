#include <cerrno>
#include <cstring>
#include <cwchar>

#include <windows.h>

#include <shlobj.h>

#include "platform/file_system.h"

namespace lumafold::file_system {
namespace {

/// A name as the wide calls take it: names are UTF-8 everywhere in the house, whatever code page the process
/// has. Bytes that are no UTF-8 are read in that. Long paths get the prefix behind which the system counts to
/// 32767 instead of 260, so they need no switch of the machine's. What does not fit is "".
class WideName {
public:
    explicit WideName(const char* name) {
        if (!Take(CP_UTF8, MB_ERR_INVALID_CHARS, name) &&
            (GetLastError() != ERROR_NO_UNICODE_TRANSLATION || !Take(CP_ACP, 0, name))) {
            text_[0] = 0;
        }
        if (std::wcslen(text_) >= kNeedsPrefix && !IsPrefixed()) AddPrefix();
    }

    operator const wchar_t*() const { return text_; }

private:
    /// From here on some call of the system would refuse a path without the prefix: folders leave room for a
    /// name of 12 letters.
    static constexpr std::size_t kNeedsPrefix = MAX_PATH - 12, kPrefixRoom = 8;

    bool Take(UINT codePage, DWORD flags, const char* name) {
        return MultiByteToWideChar(codePage, flags, name, -1, text_, static_cast<int>(kPathBytes)) != 0;
    }
    bool IsPrefixed() const {
        return std::wcsncmp(text_, L"\\\\?\\", 4) == 0 || std::wcsncmp(text_, L"\\\\.\\", 4) == 0;
    }
    void AddPrefix() {
        // Behind the prefix nothing is interpreted: no relative names, no dots, no slashes.
        wchar_t full[kPathBytes];
        const DWORD length = GetFullPathNameW(text_, static_cast<DWORD>(kPathBytes), full, nullptr);
        text_[0] = 0;
        if (length == 0 || length >= kPathBytes) return;
        const bool share = full[0] == L'\\' && full[1] == L'\\';
        std::wcscpy(text_, share ? L"\\\\?\\UNC" : L"\\\\?\\");
        std::wcscat(text_, share ? full + 1 : full);
    }

    wchar_t text_[kPathBytes + kPrefixRoom];
};

struct ErrorPair {
    DWORD system;
    FileError error;
};
constexpr ErrorPair kErrors[] = {
    {ERROR_FILE_NOT_FOUND, ENOENT},    {ERROR_PATH_NOT_FOUND, ENOENT},
    {ERROR_INVALID_DRIVE, ENOENT},     {ERROR_BAD_NETPATH, ENOENT},
    {ERROR_INVALID_NAME, ENOENT},      {ERROR_ACCESS_DENIED, EACCES},
    {ERROR_SHARING_VIOLATION, EACCES}, {ERROR_LOCK_VIOLATION, EACCES},
    {ERROR_WRITE_PROTECT, EACCES},     {ERROR_FILE_EXISTS, EEXIST},
    {ERROR_ALREADY_EXISTS, EEXIST},    {ERROR_DISK_FULL, ENOSPC},
    {ERROR_HANDLE_DISK_FULL, ENOSPC},  {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    {ERROR_OUTOFMEMORY, ENOMEM},       {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
};

FileError LastError() {
    const DWORD last = GetLastError();
    for (const ErrorPair& pair : kErrors) {
        if (pair.system == last) return pair.error;
    }
    return EIO;
}

HANDLE Handle(File file) { return reinterpret_cast<HANDLE>(file); }

FileError Result(BOOL returned) { return returned != FALSE ? 0 : LastError(); }

} // namespace

FileError Open(const char* path, Opening opening, File& file) {
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    constexpr DWORD kHow[] = {OPEN_EXISTING, CREATE_NEW, TRUNCATE_EXISTING};
    const bool reads = opening == Opening::Read;
    file = reinterpret_cast<File>(CreateFileW(WideName(path), reads ? GENERIC_READ : GENERIC_WRITE, kShare,
                                              nullptr, kHow[static_cast<int>(opening)], FILE_ATTRIBUTE_NORMAL,
                                              nullptr));
    static_assert(kNoFile == -1, "what the system gives for no file");
    if (file != kNoFile) return 0;
    const FileError error = LastError();
    // The system calls a folder a matter of permission.
    return reads && Inspect(path).kind == Kind::Folder ? EISDIR : error;
}

FileError Read(File file, void* into, std::size_t most, std::size_t& got) {
    DWORD read = 0;
    const BOOL done = ReadFile(Handle(file), into, static_cast<DWORD>(most), &read, nullptr);
    got = read;
    // A pipe whose writer has gone is at its end.
    return done != FALSE || GetLastError() == ERROR_BROKEN_PIPE ? 0 : LastError();
}

FileError Write(File file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(bytes.size());
        if (WriteFile(Handle(file), bytes.data(), size, &written, nullptr) == FALSE) return LastError();
        if (written == 0) return ENOSPC;
        bytes = bytes.subspan(written);
    }
    return 0;
}

FileError Flush(File file) {
    if (FlushFileBuffers(Handle(file)) != FALSE) return 0;
    const DWORD last = GetLastError();
    return last == ERROR_INVALID_HANDLE || last == ERROR_INVALID_FUNCTION ? 0 : LastError();
}

FileError Close(File file) { return Result(CloseHandle(Handle(file))); }

std::uint64_t LikelyBytes(File file) {
    LARGE_INTEGER size{};
    if (GetFileSizeEx(Handle(file), &size) == FALSE || size.QuadPart < 0) return 0;
    return static_cast<std::uint64_t>(size.QuadPart);
}

Standing Inspect(const char* path) {
    DWORD attributes = GetFileAttributesW(WideName(path));
    // A host's name in the code page may look like another one in UTF-8.
    if (attributes == INVALID_FILE_ATTRIBUTES) attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return {};
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {Kind::Folder, attributes};
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return {Kind::ReadOnly, attributes};
    // Writing through a link keeps it; putting another file in its place would not.
    const bool ordinary = (attributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE)) == 0;
    return {ordinary ? Kind::Ordinary : Kind::Special, attributes};
}

void TakeMode(const char* path, std::uint32_t mode) { SetFileAttributesW(WideName(path), mode); }

// The system follows links by itself where it opens what stands there.
FileError FollowLinks(const char* path, char (&target)[kPathBytes]) {
    if (std::strlen(path) >= kPathBytes) return ENAMETOOLONG;
    std::strcpy(target, path);
    return 0;
}

FileError Replace(const char* from, const char* target) {
    return Result(
        MoveFileExW(WideName(from), WideName(target), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

void Remove(const char* path) noexcept { DeleteFileW(WideName(path)); }

void MakeFolder(const char* path) { CreateDirectoryW(WideName(path), nullptr); }

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
