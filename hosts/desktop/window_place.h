// Where the program's window opens, and where it was.
#pragma once

#include <windows.h>

#include "hosts/desktop/host_settings.h"

namespace lumafold {

inline constexpr int kLeastWidth = 660, kLeastHeight = 440;

/// The place kept from the last run where that would still be seen, else one in the middle of the screen.
RECT FirstPlace(const HostSettings& settings);
/// How to show it there: `show` as the program was told, or maximised as it was.
int FirstShow(const HostSettings& settings, int show);
void RememberPlace(HWND window, HostSettings& settings);

} // namespace lumafold
