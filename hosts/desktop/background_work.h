// Work that would keep the window from answering: done on a thread of its own, with a window that shows how
// far it is and lets the person give it up.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "codecs/animation_writer.h"

namespace lumafold {

/// Runs `work` and returns when it has ended; `owner` takes no input meanwhile. What takes but a moment shows
/// no window. `work` must end soon after its progress says no; what it throws is thrown here.
void WorkBehindProgress(HWND owner, const std::string& caption,
                        const std::function<void(const FrameProgress& progress)>& work);

} // namespace lumafold
