#include "platform/global_memory.h"

#include <cstdlib>
#include <cstring>

namespace lumafold {
namespace {

struct Slot {
    std::uint8_t* memory;
    std::size_t bytes;
    std::uint32_t locks;
    std::uint32_t nextFree;
};

// Slot 0 stays unused, since handle 0 is no block; freed slots form a list. Handles are spread by four, as
// odd values are never handles and a stray small number is most likely none either.
constexpr std::uint32_t kHandleStep = 4;
Slot* slots = nullptr;
std::uint32_t slotCount = 0;
std::uint32_t firstFree = 0;

Slot* Find(GlobalHandle handle) {
    if (handle == 0 || handle % kHandleStep != 0 || handle / kHandleStep >= slotCount) return nullptr;
    Slot* slot = &slots[handle / kHandleStep];
    return slot->memory == nullptr ? nullptr : slot;
}

bool Grow() {
    const std::uint32_t larger = slotCount == 0 ? 64 : slotCount * 2;
    if (larger >= UINT32_MAX / kHandleStep) return false;
    auto* moved = static_cast<Slot*>(std::realloc(slots, larger * sizeof(Slot)));
    if (moved == nullptr) return false;
    slots = moved;
    for (std::uint32_t i = slotCount == 0 ? 1 : slotCount; i < larger; ++i) {
        slots[i] = {nullptr, 0, 0, i + 1 < larger ? i + 1 : 0};
    }
    firstFree = slotCount == 0 ? 1 : slotCount;
    slotCount = larger;
    return true;
}

} // namespace

GlobalHandle GlobalCreate(GlobalKind, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    if (firstFree == 0 && !Grow()) return 0;
    if (bytes == 0) bytes = 1; // a block of no bytes still has an address
    auto* memory = static_cast<std::uint8_t*>(std::calloc(bytes, 1));
    if (memory == nullptr) return 0;
    const std::uint32_t index = firstFree;
    firstFree = slots[index].nextFree;
    slots[index] = {memory, bytes, 0, 0};
    allocation_hooks::CountBlock(+1);
    return index * kHandleStep;
}

GlobalHandle GlobalResize(GlobalHandle handle, std::size_t bytes) {
    Slot* slot = Find(handle);
    if (!allocation_hooks::Admit() || slot == nullptr || slot->locks != 0) return 0;
    if (bytes == 0) bytes = 1;
    auto* memory = static_cast<std::uint8_t*>(std::realloc(slot->memory, bytes));
    if (memory == nullptr) return 0;
    if (bytes > slot->bytes) std::memset(memory + slot->bytes, 0, bytes - slot->bytes);
    slot->memory = memory;
    slot->bytes = bytes;
    return handle;
}

void* GlobalAcquire(GlobalHandle handle) {
    Slot* slot = Find(handle);
    if (slot == nullptr) return nullptr;
    ++slot->locks;
    allocation_hooks::CountLock(+1);
    return slot->memory;
}

void GlobalRelease(GlobalHandle handle) {
    Slot* slot = Find(handle);
    if (slot == nullptr || slot->locks == 0) return;
    --slot->locks;
    allocation_hooks::CountLock(-1);
}

std::size_t GlobalBytes(GlobalHandle handle) {
    const Slot* slot = Find(handle);
    return slot == nullptr ? 0 : slot->bytes;
}

void GlobalDestroy(GlobalHandle handle) {
    Slot* slot = Find(handle);
    if (slot == nullptr) return;
    std::free(slot->memory);
    *slot = {nullptr, 0, 0, firstFree};
    firstFree = handle / kHandleStep;
    allocation_hooks::CountBlock(-1);
}

} // namespace lumafold
