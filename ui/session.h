// What the open dialog's parts share: the host that called, the font of the list, and whether a build runs.
#pragma once

#include <windows.h>

#include "plugin/host.h"

namespace lumafold {

/// Set while the main dialog runs. The context is the host's.
struct DialogSession {
    const HostContext* host = nullptr;
    HFONT listFont = nullptr;
    bool building = false; ///< a host may pump messages meanwhile; nothing may start or close then
};

DialogSession& Session();

/// A window as records name it, and back.
inline WindowHandle HandleOf(HWND window) {
    return static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(window));
}
inline HWND WindowOf(WindowHandle window) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace lumafold
