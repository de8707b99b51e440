#include "platform/global_memory.h"

#include <cstring>

namespace lumafold {

GlobalHandle GlobalDuplicate(GlobalHandle handle) {
    const std::size_t bytes = GlobalBytes(handle);
    const GlobalLocked<const std::uint8_t> source(handle);
    if (bytes == 0 || !source) return 0;
    OwnedGlobal copy(GlobalCreate(GlobalKind::Movable, bytes));
    const GlobalLocked<std::uint8_t> target(copy.Get());
    if (!target) return 0;
    std::memcpy(target.Get(), source.Get(), bytes);
    return copy.Release();
}

} // namespace lumafold
