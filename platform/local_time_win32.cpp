#include "platform/local_time.h"

#include <windows.h>

namespace lumafold {

LocalTime LocalTimeNow() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wDayOfWeek, now.wHour, now.wMinute, now.wSecond};
}

} // namespace lumafold
