// Turns the image list into a finished animation in the host: canvas, transitions, colours, hand-over.
#pragma once

#include "build/image_list.h"
#include "plugin/host.h"

namespace lumafold {

/// 1 when the task was made and every frame was added. Otherwise 0, after one message, with the list as it
/// was. `window` owns messages and task; 0 where there is none. Settings are read from pluginSettings.
int BuildAnimation(ImageList& list, WindowHandle window, const HostContext& host, TaskKind kind);

} // namespace lumafold
