// How much memory the machine has, for those who want to leave some of it to others.
#pragma once

#include <cstdint>

namespace lumafold {

/// In bytes; the largest number where the system does not tell.
std::uint64_t PhysicalMemory();

} // namespace lumafold
