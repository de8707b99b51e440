#include <cstdio>

#include "hosts/desktop/window.h"

namespace lumafold {
namespace {

std::string caught;

} // namespace

void ReportFault(const char* text) {
    std::fprintf(stderr, "lumafold-host: %s\n", text);
    std::fflush(stderr);
}

void CatchFault(const char* text) {
    if (caught.empty()) caught = text;
    ReportFault(text);
}
const std::string& CaughtFault() { return caught; }

} // namespace lumafold
