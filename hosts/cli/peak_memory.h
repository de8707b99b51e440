// The most memory that this process has held so far.
#pragma once

#include <cstdint>

namespace lumafold {

/// In bytes of the machine's memory; 0 where the system does not tell.
std::uint64_t PeakMemory();

} // namespace lumafold
