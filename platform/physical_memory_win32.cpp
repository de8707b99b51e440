#include <windows.h>

#include "platform/physical_memory.h"

namespace lumafold {

std::uint64_t PhysicalMemory() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return GlobalMemoryStatusEx(&status) != FALSE ? status.ullTotalPhys : UINT64_MAX;
}

} // namespace lumafold
