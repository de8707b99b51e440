#include "hosts/cli/memory_limit.h"

#include <algorithm>
#include <cstdio>

#include "build/build_driver.h"
#include "platform/machine.h"

namespace lumafold {
namespace {

std::string Text(std::uint64_t bytes) {
    constexpr double kMega = 1e6, kGiga = 1e9;
    const auto amount = static_cast<double>(bytes);
    char text[40];
    if (amount < kGiga) {
        std::snprintf(text, sizeof(text), "%.1f MB", amount / kMega);
    } else {
        std::snprintf(text, sizeof(text), "%s%.1f GB", bytes == UINT64_MAX ? "more than " : "",
                      amount / kGiga);
    }
    return text;
}

} // namespace

std::uint64_t UsualMemoryLimit() { return std::min(PhysicalMemory() / 2, UsualBudget()); }

std::string WhyTooLarge(const BuildEstimate& estimate, std::uint64_t limit) {
    if (estimate.bytes <= limit) return "";
    return "would need " + Text(estimate.bytes) + ": " + std::to_string(estimate.frames) + " frames of " +
           std::to_string(estimate.width) + "x" + std::to_string(estimate.height) + "; the limit is " +
           Text(limit);
}

} // namespace lumafold
