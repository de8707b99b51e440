// What this process holds of the machine's memory.
#pragma once

#include <cstdint>

namespace lumafold {

/// The most it has held so far, in bytes; 0 where the system does not tell.
std::uint64_t PeakMemory();

/// Gives back what was freed, where the system's library keeps it for later.
void ReturnFreedMemory();

} // namespace lumafold
