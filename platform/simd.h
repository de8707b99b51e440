// Whether loops may use the processor's SSE2 instructions. LUMAFOLD_PLAIN_LOOPS builds the plain loops in
// their place, which a processor or browser without them runs; both give the same bytes.
#pragma once

#if defined(__SSE2__) && !defined(LUMAFOLD_PLAIN_LOOPS)
#define LUMAFOLD_SSE2 1
#include <emmintrin.h>
#else
#define LUMAFOLD_SSE2 0
#endif
