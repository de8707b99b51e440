// A window of the system as records name it.
#pragma once

#include <cstdint>

namespace lumafold {

/// 0 where there is none.
using WindowHandle = std::uint32_t;

} // namespace lumafold
