// How many processors this process may use.
#pragma once

#include <optional>
#include <string_view>

namespace lumafold {

/// At least 1: as many as it may be scheduled on, and no more than its control group's share of time keeps
/// busy.
int UsableProcessors();

/// What a control group's share comes to in processors, rounded up; none where it sets no bound. `share` is
/// what the system says: "150000 100000" is one and a half, microseconds of time in microseconds of period;
/// "max 100000" and "-1 100000" are no bound.
std::optional<int> ProcessorsOfShare(std::string_view share);

} // namespace lumafold
