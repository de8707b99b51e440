// Turns the image list into a finished animation in the host: canvas, transitions, colours, hand-over.
#pragma once

#include "build/build_observer.h"
#include "build/image_list.h"
#include "platform/runner.h"
#include "plugin/protocol/host.h"
#include "settings/settings.h"

namespace lumafold {

/// What a build may hold at once where nobody says otherwise, in bytes: most of what this process can still
/// take, with an eighth left to the host and to gaps between blocks.
std::uint64_t UsualBudget();

/// All of it outlives the build, which keeps nothing. Builds of different lists may run at the same time.
struct BuildRequest {
    ImageList& list;
    WindowHandle window; ///< owns the task, and gives drawing contexts; 0 where there is none
    const HostContext& host;
    TaskKind kind;
    const PluginSettings& settings;
    BuildObserver& observer;
    const Runner& runner;
    /// Bytes. A build that needs more by its estimate is given up before it renders anything.
    std::uint64_t budget;
};

/// 1 when the task was made and every frame was added. Otherwise 0, after one failure was told, with the list
/// as it was. The host is called on the caller's thread alone.
int BuildAnimation(const BuildRequest& request);

} // namespace lumafold
