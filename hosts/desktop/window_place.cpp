#include "hosts/desktop/window_place.h"

#include <algorithm>

#include "hosts/desktop/look.h"

namespace lumafold {
namespace {

bool IsOnScreen(const WindowSides& place) {
    const RECT screen{GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                      GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                      GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    const RECT kept{place.left, place.top, place.right, place.bottom};
    RECT seen{};
    return IntersectRect(&seen, &kept, &screen) != 0 && seen.right - seen.left > 100 &&
           seen.bottom - seen.top > 60 && place.top >= screen.top - 8;
}

} // namespace

RECT FirstPlace(const HostSettings& settings) {
    const WindowSides& kept = settings.window;
    if (IsOnScreen(kept)) return {kept.left, kept.top, kept.right, kept.bottom};
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const int dots = SystemDotsPerInch();
    const int width = std::min<int>(MulDiv(1000, dots, 96), work.right - work.left - 40);
    const int height = std::min<int>(MulDiv(710, dots, 96), work.bottom - work.top - 40);
    const int left = (work.left + work.right - width) / 2, top = (work.top + work.bottom - height) / 2;
    return {left, top, left + width, top + height};
}

int FirstShow(const HostSettings& settings, int show) {
    return IsOnScreen(settings.window) && settings.maximised && show == SW_SHOWNORMAL ? SW_SHOWMAXIMIZED
                                                                                      : show;
}

void RememberPlace(HWND window, HostSettings& settings) {
    WINDOWPLACEMENT place{};
    place.length = sizeof(place);
    if (GetWindowPlacement(window, &place) == 0) return;
    RECT at = place.rcNormalPosition;
    // Counted from the corner of what the task bar leaves; windows are made by places counted from the
    // screen's.
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor) != 0)
        OffsetRect(&at, monitor.rcWork.left - monitor.rcMonitor.left,
                   monitor.rcWork.top - monitor.rcMonitor.top);
    settings.window = {at.left, at.top, at.right, at.bottom};
    settings.maximised = place.showCmd == SW_SHOWMAXIMIZED;
}

} // namespace lumafold
