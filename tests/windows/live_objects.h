// What this process holds of the system's, to tell whether anything stays behind.
#pragma once

#include <windows.h>

#include <cstddef>

namespace lumafold::test {

/// Open handles of the kernel's.
std::size_t OpenHandles();
/// Pens, brushes, bitmaps, fonts, contexts and the like.
int GdiObjects();
/// Windows of a window's thread, children not counted.
int WindowsBeside(HWND window);

} // namespace lumafold::test
