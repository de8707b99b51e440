#include "platform/global_memory.h"

#include <algorithm>
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

/// The process's blocks by their handles, of which 0 is none. Free slots form a list that ends behind the
/// last slot. Whoever calls a member holds the mutex.
class HandleTable {
public:
    std::mutex mutex;

    Slot* Find(GlobalHandle handle) {
        if (handle == 0 || handle % kHandleStep != 0 || handle / kHandleStep > count_) return nullptr;
        Slot* slot = &slots_[handle / kHandleStep - 1];
        return slot->memory == nullptr ? nullptr : slot;
    }
    /// A handle for a block, or 0.
    GlobalHandle Add(std::uint8_t* memory, std::size_t bytes) {
        if (firstFree_ == count_ && !Grow()) return 0;
        const std::uint32_t index = firstFree_;
        firstFree_ = slots_[index].nextFree;
        slots_[index] = {memory, bytes, 0, 0};
        return (index + 1) * kHandleStep;
    }
    /// Takes a slot that Find gave out of use.
    void Remove(Slot* slot) {
        *slot = {nullptr, 0, 0, firstFree_};
        firstFree_ = static_cast<std::uint32_t>(slot - slots_);
    }

private:
    bool Grow() {
        const std::uint32_t larger = std::max(count_ * 2, 64U);
        if (larger >= UINT32_MAX / kHandleStep) return false;
        auto* moved = static_cast<Slot*>(std::realloc(slots_, larger * sizeof(Slot)));
        if (moved == nullptr) return false;
        slots_ = moved;
        for (; count_ < larger; ++count_)
            slots_[count_] = {nullptr, 0, 0, count_ + 1};
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
    std::unique_lock lock(table.mutex);
    Slot* slot = table.Find(handle);
    if (slot == nullptr) return;
    std::uint8_t* memory = slot->memory;
    table.Remove(slot);
    lock.unlock();
    std::free(memory);
    allocation_hooks::CountBlock(-1);
}

} // namespace lumafold
