#include <unistd.h>

#include "platform/machine.h"

namespace lumafold {

std::tm LocalTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local;
}

std::uint64_t PhysicalMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES), bytes = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || bytes <= 0) return UINT64_MAX;
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(bytes);
}

std::uint64_t MemoryRoom() { return UINT64_MAX; }

} // namespace lumafold
