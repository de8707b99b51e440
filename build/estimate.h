// What a build is going to need, told from sizes and settings before a single frame is rendered: settings
// files can ask for more frames than any memory holds, and nobody should wait for that to be found out.
#pragma once

#include "build/image_list.h"
#include "plugin/protocol/host.h"
#include "settings/settings.h"

namespace lumafold {

/// Numbers too large for their fields are the largest they hold.
struct BuildEstimate {
    std::int32_t width = 0, height = 0; ///< of the canvas
    std::int64_t frames = 0;
    // The list's own pictures apart:
    std::uint64_t bytes = 0;      ///< held at once at the most
    std::uint64_t handedOver = 0; ///< of it, while the host takes the frames
};

/// `workers` is how many pieces of work run at once. False when an entry cannot be read.
bool EstimateBuild(ImageList& list, TaskKind kind, const PluginSettings& settings, std::size_t workers,
                   BuildEstimate& estimate);

} // namespace lumafold
