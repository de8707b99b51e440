// What the menus and the toolbar offer, by what is open and how it is shown.
#pragma once

#include <windows.h>

#include "hosts/desktop/host_settings.h"
#include "hosts/desktop/toolbar.h"

namespace lumafold {

struct Offer {
    const HostSettings& settings;
    bool open;    ///< whether there is an animation to do something with
    bool playing; ///< whether that runs
    bool fits;    ///< whether it is zoomed to the window
};

/// A menu that is about to be seen, one by one.
void PrepareMenu(HMENU menu, const Offer& offer);
void PrepareToolbar(const Toolbar& toolbar, const Offer& offer);

} // namespace lumafold
