// How much memory there is: in the machine, for those who leave some of it to others, and to this process.
#pragma once

#include <cstdint>

namespace lumafold {

/// In bytes; the largest number where the system does not tell.
std::uint64_t PhysicalMemory();

/// What this process can still take, in bytes: of its addresses and of what the system would give it. The
/// largest number where nothing but the machine sets an end.
std::uint64_t MemoryRoom();

} // namespace lumafold
