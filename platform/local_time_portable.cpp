#include "platform/local_time.h"

#include <ctime>

namespace lumafold {

LocalTime LocalTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return {1900 + local.tm_year, 1 + local.tm_mon, local.tm_mday, local.tm_wday,
            local.tm_hour,        local.tm_min,     local.tm_sec};
}

} // namespace lumafold
