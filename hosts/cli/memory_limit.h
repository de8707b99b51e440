// How much memory a build may take, and what is said of one that would take more.
#pragma once

#include <string>

#include "build/estimate.h"

namespace lumafold {

/// Half of what the machine has, since the finished frames are held beside those of the build; never more
/// than a 32-bit program can use.
std::uint64_t UsualMemoryLimit();

/// "would need 12.3 GB: 4000 frames of 640x480; the limit is 8.0 GB", or "" where `limit` bytes are enough.
std::string WhyTooLarge(const BuildEstimate& estimate, std::uint64_t limit);

} // namespace lumafold
