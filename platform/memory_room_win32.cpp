#include <windows.h>

#include <algorithm>

#include "platform/memory_room.h"

namespace lumafold {

namespace {

/// All fields the largest number where the system does not tell.
MEMORYSTATUSEX Status() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    if (GlobalMemoryStatusEx(&status) == FALSE) {
        status.ullTotalPhys = status.ullAvailVirtual = status.ullAvailPageFile = UINT64_MAX;
    }
    return status;
}

} // namespace

std::uint64_t PhysicalMemory() { return Status().ullTotalPhys; }

std::uint64_t MemoryRoom() {
    const MEMORYSTATUSEX status = Status();
    return std::min<std::uint64_t>(status.ullAvailVirtual, status.ullAvailPageFile);
}

} // namespace lumafold
