#include "hosts/cli/process_memory.h"

#ifdef _WIN32
#include <windows.h>

#include <psapi.h>
#else
#include <sys/resource.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lumafold {

#ifdef _WIN32

std::uint64_t PeakMemory() {
    PROCESS_MEMORY_COUNTERS counters{};
    const BOOL told = GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return told != 0 ? counters.PeakWorkingSetSize : 0;
}

#else

std::uint64_t PeakMemory() {
    rusage usage{};
    return getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<std::uint64_t>(usage.ru_maxrss) * 1024 : 0;
}

#endif

void ShareFreedMemory() {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);
#endif
}

void ReturnFreedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace lumafold
