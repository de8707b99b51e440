// The loaded module as Windows knows it: dialogs, strings, cursors and palettes are loaded from it.
#pragma once

#include <windows.h>

namespace lumafold {

/// The plug-in's own module, or null before the system or a test has named it.
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE instance);

} // namespace lumafold
