// What this process holds of the machine's memory.
#pragma once

#include <cstdint>

namespace lumafold {

/// The most it has held so far, in bytes; 0 where the system does not tell.
std::uint64_t PeakMemory();

/// Lets all threads take what any of them has freed, where the system's library keeps it for each thread:
/// workers free what others made, and a build would take a third more. Blocks are too large for threads to
/// wait for one another.
void ShareFreedMemory();

/// Gives back what was freed, where the system's library keeps it for later.
void ReturnFreedMemory();

} // namespace lumafold
