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

} // namespace

GlobalHandle GlobalCreate(GlobalKind kind, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    const HGLOBAL block = GlobalAlloc(static_cast<UINT>(kind), bytes);
    if (block != nullptr) allocation_hooks::CountBlock(+1);
    return Ours(block);
}

GlobalHandle GlobalResize(GlobalHandle handle, std::size_t bytes) {
    if (!allocation_hooks::Admit()) return 0;
    return Ours(GlobalReAlloc(System(handle), bytes, GMEM_MOVEABLE | GMEM_ZEROINIT));
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
    GlobalFree(System(handle));
    allocation_hooks::CountBlock(-1);
}

} // namespace lumafold
