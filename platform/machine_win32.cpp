#include <windows.h>

#include <algorithm>

#include "platform/machine.h"

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

std::tm LocalTimeNow() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    std::tm local{};
    local.tm_year = now.wYear - 1900;
    local.tm_mon = now.wMonth - 1;
    local.tm_mday = now.wDay;
    local.tm_wday = now.wDayOfWeek;
    local.tm_hour = now.wHour;
    local.tm_min = now.wMinute;
    local.tm_sec = now.wSecond;
    return local;
}

std::uint64_t PhysicalMemory() { return Status().ullTotalPhys; }

std::uint64_t MemoryRoom() {
    const MEMORYSTATUSEX status = Status();
    return std::min<std::uint64_t>(status.ullAvailVirtual, status.ullAvailPageFile);
}

} // namespace lumafold
