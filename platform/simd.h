// Whether loops may use the processor's SSE2 instructions, and how they get at wider ones.
// LUMAFOLD_PLAIN_LOOPS builds the plain loops in their place, which a processor or browser without them runs;
// all give the same bytes.
#pragma once

#if defined(__SSE2__) && !defined(LUMAFOLD_PLAIN_LOOPS)
#define LUMAFOLD_SSE2 1
#include <emmintrin.h>
#else
#define LUMAFOLD_SSE2 0
#endif
// WebAssembly has vectors of 16 bytes alone, which SSE2's instructions are compiled to. LUMAFOLD_NO_AVX2
// builds the loops that other processors run.
#if LUMAFOLD_SSE2 && !defined(__wasm__) && !defined(LUMAFOLD_NO_AVX2)
#define LUMAFOLD_AVX2 1
#else
#define LUMAFOLD_AVX2 0
#endif

/// On a function that takes part in WithWidestLanes: it is compiled anew within each of its callers.
#define LUMAFOLD_IN_CALLER [[gnu::always_inline]] inline

namespace lumafold {

#if LUMAFOLD_AVX2
template <typename Body>
[[gnu::target("avx2")]] void WithAvx2(const Body& body) {
    body.template Run<32>();
}
#endif

/// Calls `body.Run<bytes>()` with the bytes of the widest vectors that the processor works on at once, 32 or
/// 16. Run and what it calls are LUMAFOLD_IN_CALLER, so that they are compiled for that processor.
template <typename Body>
void WithWidestLanes(const Body& body) {
#if LUMAFOLD_AVX2
    if (__builtin_cpu_supports("avx2")) return WithAvx2(body);
#endif
    body.template Run<16>();
}

} // namespace lumafold
