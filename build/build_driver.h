// Turns the image list into a finished animation in the host: canvas, transitions, colours, hand-over.
#pragma once

#include "build/image_list.h"
#include "plugin/protocol/host.h"

namespace lumafold {

/// What a build may hold at once where nobody says otherwise: inside a 32-bit host, which has pictures of its
/// own and little room in one piece, this much; elsewhere what there is.
inline constexpr std::uint64_t kUsualBudget = sizeof(void*) == 4 ? std::uint64_t{3} << 29 : UINT64_MAX;

/// 1 when the task was made and every frame was added. Otherwise 0, after one message, with the list as it
/// was. `window` owns messages and task; 0 where there is none. Settings are read from pluginSettings. A
/// build that needs more than `budget` bytes by its estimate is given up before it renders anything.
int BuildAnimation(ImageList& list, WindowHandle window, const HostContext& host, TaskKind kind,
                   std::uint64_t budget = kUsualBudget);

} // namespace lumafold
