// What the dialogs share: the settings, which outlive them, the host that called, the font of the list, and
// what is going on.
#pragma once

#include <windows.h>

#include <utility>

#include "plugin/protocol/host.h"
#include "settings/settings.h"

namespace lumafold {

struct DialogSession {
    /// The one set of this process: it keeps its values from one opening of the dialog to the next.
    PluginSettings settings;

    // Set while the main dialog runs. The context is the host's.
    const HostContext* host = nullptr;
    HWND dialog = nullptr;
    HFONT listFont = nullptr;
    bool open = false;      ///< one dialog at a time, even when a host calls again from within a command
    bool busy = false;      ///< an action waits for the host, which may pump messages: no other may begin
    bool building = false;  ///< nor may anything change the list or close the dialog
    unsigned postponed = 0; ///< values that were changed during a build, a bit for each of their controls
};

DialogSession& Session();

/// Raises a flag of the session while it lives.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
    ~Raised() { flag_ = before_; }

private:
    bool& flag_;
    const bool before_;
};

/// A window as records name it, and back.
inline WindowHandle HandleOf(HWND window) {
    return static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(window));
}
inline HWND WindowOf(WindowHandle window) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace lumafold
