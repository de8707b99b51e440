#include "tests/windows/live_objects.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace lumafold::test {
namespace {

BOOL CALLBACK CountWindow(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

} // namespace

// From the system's list of all handles: Wine answers GetProcessHandleCount with 0.
std::size_t OpenHandles() {
    constexpr ULONG kHandleInformation = 16;
    struct Entry {
        ULONG process;
        ULONG typeAndValue;
        PVOID object;
        ULONG access;
    };
    using Query = LONG WINAPI(ULONG, PVOID, ULONG, PULONG);
    const auto query = reinterpret_cast<Query*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<ULONG> list(1 << 20);
    if (query(kHandleInformation, list.data(), static_cast<ULONG>(list.size() * sizeof(ULONG)), nullptr) != 0)
        return 0;
    const auto* entries = reinterpret_cast<const Entry*>(&list[1]);
    // The upper half of the process field is another number on some versions.
    return static_cast<std::size_t>(std::count_if(entries, entries + list[0], [](const Entry& entry) {
        return static_cast<WORD>(entry.process) == static_cast<WORD>(GetCurrentProcessId());
    }));
}

int GdiObjects() {
    const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    if (counted != 0) return static_cast<int>(counted);
    // Wine counts none, but knows each by the lower half of its handle alone.
    int found = 0;
    for (std::uintptr_t number = 1; number < 0x10000; ++number) {
        const auto object = reinterpret_cast<HGDIOBJ>(number); // NOLINT(performance-no-int-to-ptr)
        if (GetObjectType(object) != 0) ++found;
    }
    return found;
}

int WindowsBeside(HWND window) {
    int count = 0;
    EnumThreadWindows(GetWindowThreadProcessId(window, nullptr), CountWindow,
                      reinterpret_cast<LPARAM>(&count));
    return count;
}

} // namespace lumafold::test
