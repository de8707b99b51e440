// The time of day where the person is, as the system tells it: on Windows whatever a variable of the process
// says of time zones.
#pragma once

namespace lumafold {

struct LocalTime {
    int year, month, day; ///< month 1 to 12
    int weekday;          ///< 0 is Sunday
    int hour, minute, second;
};

/// All zero, but for a month of 1, when the system does not know.
LocalTime LocalTimeNow();

} // namespace lumafold
