// Keeps the memory that one benchmark has freed for the next, so that what ran before does not decide which
// of them pays for fresh pages. Whole jobs pay for them: tools/bench measures those.
#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>

namespace {

[[maybe_unused]] const bool kKept = [] {
    constexpr int kNeverGivenBack = 1 << 30, kMostFromHeap = 32 << 20; // bytes
    return mallopt(M_TRIM_THRESHOLD, kNeverGivenBack) == 1 && mallopt(M_MMAP_THRESHOLD, kMostFromHeap) == 1;
}();

} // namespace
#endif
