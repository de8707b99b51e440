#include "platform/allocation.h"

#include <atomic>
#include <cstdlib>

namespace lumafold {
namespace {

// The process's own: threads that allocate count together.
std::atomic<std::int64_t> failAt = 0;
std::atomic<std::int64_t> requests = 0;
std::atomic<std::int64_t> liveBlocks = 0;
std::atomic<std::int64_t> liveLocks = 0;

} // namespace

void* PlainAlloc(std::size_t count, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return nullptr;
    void* memory = std::calloc(count == 0 ? 1 : count, bytes);
    if (memory != nullptr) allocation_hooks::CountBlock(+1);
    return memory;
}

void PlainFree(void* memory) {
    if (memory == nullptr) return;
    allocation_hooks::CountBlock(-1);
    std::free(memory);
}

namespace allocation_hooks {

void FailNth(std::int64_t n) {
    failAt = n;
    requests = 0;
}
bool HasFailed() { return failAt > 0 && requests >= failAt; }
std::int64_t Requests() { return requests; }
std::int64_t LiveBlocks() { return liveBlocks; }
std::int64_t LiveLocks() { return liveLocks; }

bool Admit() { return ++requests != failAt; }
void CountBlock(int change) { liveBlocks += change; }
void CountLock(int change) { liveLocks += change; }

} // namespace allocation_hooks
} // namespace lumafold
