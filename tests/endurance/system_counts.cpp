#include "tests/endurance/system_counts.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t liveObjects = 0;
}

void* operator new(std::size_t bytes) {
    void* made = std::malloc(bytes != 0 ? bytes : 1);
    if (made == nullptr) throw std::bad_alloc();
    ++liveObjects;
    return made;
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    void* made = std::malloc(bytes != 0 ? bytes : 1);
    if (made != nullptr) ++liveObjects;
    return made;
}
void operator delete(void* object) noexcept {
    if (object != nullptr) --liveObjects;
    std::free(object);
}
void operator delete(void* object, std::size_t) noexcept { operator delete(object); }

#ifdef _WIN32

#include "tests/windows/live_objects.h"

namespace lumafold::test {
namespace {

std::size_t CommittedBytes() {
    std::size_t bytes = 0;
    const char* at = nullptr;
    MEMORY_BASIC_INFORMATION piece;
    while (VirtualQuery(at, &piece, sizeof(piece)) != 0) {
        if (piece.State == MEM_COMMIT && piece.Type == MEM_PRIVATE) bytes += piece.RegionSize;
        at = static_cast<const char*>(piece.BaseAddress) + piece.RegionSize;
    }
    return bytes;
}

} // namespace

SystemCounts CountOfSystem() {
    return {liveObjects, CommittedBytes(), OpenHandles(), static_cast<std::size_t>(GdiObjects())};
}

} // namespace lumafold::test

#else

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace lumafold::test {

SystemCounts CountOfSystem() {
    SystemCounts counts;
    counts.objects = liveObjects;
    std::size_t whole = 0;
    std::ifstream("/proc/self/statm") >> whole >> counts.memory;
    counts.memory *= static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::filesystem::directory_iterator open("/proc/self/fd"), none;
    counts.files = static_cast<std::size_t>(std::distance(open, none));
    return counts;
}

} // namespace lumafold::test

#endif
