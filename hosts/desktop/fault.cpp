#include <cstdio>

#include "hosts/desktop/window.h"

namespace lumafold {

void ReportFault(const char* text) {
    std::fprintf(stderr, "lumafold-host: %s\n", text);
    std::fflush(stderr);
}

} // namespace lumafold
