#include <unistd.h>

#include "platform/memory_room.h"

namespace lumafold {

std::uint64_t PhysicalMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES), bytes = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || bytes <= 0) return UINT64_MAX;
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(bytes);
}

std::uint64_t MemoryRoom() { return UINT64_MAX; }

} // namespace lumafold
