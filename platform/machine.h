// What the machine tells of itself: the time of day, and how much memory there is.
#pragma once

#include <cstdint>
#include <ctime>

namespace lumafold {

/// The time where the person is, on Windows whatever a variable of the process says of time zones. All zero
/// when the system does not know.
std::tm LocalTimeNow();

/// In bytes; the largest number where the system does not tell.
std::uint64_t PhysicalMemory();

/// What this process can still take, in bytes: of its addresses and of what the system would give it. The
/// largest number where nothing but the machine sets an end.
std::uint64_t MemoryRoom();

} // namespace lumafold
