// What this process holds, to tell whether it grows.
#pragma once

#include <cstddef>

namespace lumafold::test {

struct SystemCounts {
    std::size_t objects = 0; ///< what new made and delete has not freed
    std::size_t memory = 0;  ///< bytes of memory the system has given: resident, or committed on Windows
    std::size_t files = 0;   ///< open descriptors, or handles
    std::size_t drawing = 0; ///< drawing objects; 0 where there are none
};
SystemCounts CountOfSystem();

} // namespace lumafold::test
