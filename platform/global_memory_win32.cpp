#include "platform/global_memory.h"

#include <windows.h>

namespace lumafold {
namespace {

HGLOBAL System(GlobalHandle handle) {
    return reinterpret_cast<HGLOBAL>(
        static_cast<std::uintptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}
GlobalHandle Ours(HGLOBAL handle) {
    return static_cast<GlobalHandle>(reinterpret_cast<std::uintptr_t>(handle));
}

// A block of no bytes would be a discarded one, which cannot be locked; and resizing to none would free it.
constexpr std::size_t AtLeastOne(std::size_t bytes) { return bytes == 0 ? 1 : bytes; }

} // namespace

GlobalHandle GlobalCreate(GlobalKind kind, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    const HGLOBAL block = GlobalAlloc(static_cast<UINT>(kind), AtLeastOne(bytes));
    if (block != nullptr) allocation_hooks::CountBlock(+1);
    return Ours(block);
}

GlobalHandle GlobalResize(GlobalHandle handle, std::size_t bytes) {
    if (!allocation_hooks::Admit() || handle == 0) return 0;
    // The system would move a locked block too, away from under whoever locked it.
    if ((GlobalFlags(System(handle)) & GMEM_LOCKCOUNT) != 0) return 0;
    return Ours(GlobalReAlloc(System(handle), AtLeastOne(bytes), GMEM_MOVEABLE | GMEM_ZEROINIT));
}

void* GlobalAcquire(GlobalHandle handle) {
    void* address = GlobalLock(System(handle));
    if (address != nullptr) allocation_hooks::CountLock(+1);
    return address;
}

void GlobalRelease(GlobalHandle handle) {
    GlobalUnlock(System(handle));
    allocation_hooks::CountLock(-1);
}

std::size_t GlobalBytes(GlobalHandle handle) { return handle == 0 ? 0 : GlobalSize(System(handle)); }

void GlobalDestroy(GlobalHandle handle) {
    if (handle == 0) return;
    if (GlobalFree(System(handle)) == nullptr) allocation_hooks::CountBlock(-1);
}

} // namespace lumafold
