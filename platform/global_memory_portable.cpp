#include "platform/global_memory.h"

#include <cstdlib>
#include <cstring>
#include <mutex>

namespace lumafold {
namespace {

struct Slot {
    std::uint8_t* memory;
    std::size_t bytes;
    std::uint32_t locks;
    std::uint32_t nextFree;
};

// Handles are spread by four, as odd values are never handles and a stray small number is most likely none
// either.
constexpr std::uint32_t kHandleStep = 4;

/// The process's blocks by their handles. Slot 0 stays unused, since handle 0 is no block; freed slots form a
/// list. Whoever calls a member holds the mutex.
class HandleTable {
public:
    std::mutex mutex;

    Slot* Find(GlobalHandle handle) {
        if (handle == 0 || handle % kHandleStep != 0 || handle / kHandleStep >= count_) return nullptr;
        Slot* slot = &slots_[handle / kHandleStep];
        return slot->memory == nullptr ? nullptr : slot;
    }
    /// A handle for a block, or 0.
    GlobalHandle Add(std::uint8_t* memory, std::size_t bytes) {
        if (firstFree_ == 0 && !Grow()) return 0;
        const std::uint32_t index = firstFree_;
        firstFree_ = slots_[index].nextFree;
        slots_[index] = {memory, bytes, 0, 0};
        return index * kHandleStep;
    }
    void Remove(GlobalHandle handle) {
        slots_[handle / kHandleStep] = {nullptr, 0, 0, firstFree_};
        firstFree_ = handle / kHandleStep;
    }

private:
    bool Grow() {
        const std::uint32_t larger = count_ == 0 ? 64 : count_ * 2;
        if (larger >= UINT32_MAX / kHandleStep) return false;
        auto* moved = static_cast<Slot*>(std::realloc(slots_, larger * sizeof(Slot)));
        if (moved == nullptr) return false;
        slots_ = moved;
        for (std::uint32_t i = count_ == 0 ? 1 : count_; i < larger; ++i)
            slots_[i] = {nullptr, 0, 0, i + 1 < larger ? i + 1 : 0};
        firstFree_ = count_ == 0 ? 1 : count_;
        count_ = larger;
        return true;
    }

    Slot* slots_ = nullptr;
    std::uint32_t count_ = 0;
    std::uint32_t firstFree_ = 0;
};

constinit HandleTable table;
using Lock = std::scoped_lock<std::mutex>;

} // namespace

GlobalHandle GlobalCreate(GlobalKind, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    if (bytes == 0) bytes = 1; // a block of no bytes still has an address
    auto* memory = static_cast<std::uint8_t*>(std::calloc(bytes, 1));
    if (memory == nullptr) return 0;
    const Lock lock(table.mutex);
    const GlobalHandle handle = table.Add(memory, bytes);
    if (handle == 0) {
        std::free(memory);
    } else {
        allocation_hooks::CountBlock(+1);
    }
    return handle;
}

GlobalHandle GlobalResize(GlobalHandle handle, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    const Lock lock(table.mutex);
    Slot* slot = table.Find(handle);
    if (slot == nullptr || slot->locks != 0) return 0;
    if (bytes == 0) bytes = 1;
    auto* memory = static_cast<std::uint8_t*>(std::realloc(slot->memory, bytes));
    if (memory == nullptr) return 0;
    if (bytes > slot->bytes) std::memset(memory + slot->bytes, 0, bytes - slot->bytes);
    slot->memory = memory;
    slot->bytes = bytes;
    return handle;
}

void* GlobalAcquire(GlobalHandle handle) {
    const Lock lock(table.mutex);
    Slot* slot = table.Find(handle);
    if (slot == nullptr) return nullptr;
    ++slot->locks;
    allocation_hooks::CountLock(+1);
    return slot->memory;
}

void GlobalRelease(GlobalHandle handle) {
    const Lock lock(table.mutex);
    Slot* slot = table.Find(handle);
    if (slot == nullptr || slot->locks == 0) return;
    --slot->locks;
    allocation_hooks::CountLock(-1);
}

std::size_t GlobalBytes(GlobalHandle handle) {
    const Lock lock(table.mutex);
    const Slot* slot = table.Find(handle);
    return slot == nullptr ? 0 : slot->bytes;
}

void GlobalDestroy(GlobalHandle handle) {
    std::uint8_t* memory = nullptr;
    {
        const Lock lock(table.mutex);
        if (const Slot* slot = table.Find(handle)) {
            memory = slot->memory;
            table.Remove(handle);
        }
    }
    if (memory == nullptr) return;
    std::free(memory);
    allocation_hooks::CountBlock(-1);
}

} // namespace lumafold
