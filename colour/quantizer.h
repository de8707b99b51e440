// The palette made for one animation: the very colours of its frames where these are few, else the surviving
// nodes of an octree over all their pixels, pruned from the cheapest on.
#pragma once

#include "image/frame_list.h"
#include "platform/runner.h"

namespace lumafold {

/// The values are those hosts' error codes have; anything but Failed lets a build go on.
enum class PaletteResult {
    Failed = 0, ///< a frame that cannot be read or is not 24 bits deep, or no memory for nodes
    Made = 1,
    NoTree = 6, ///< not even a tree to begin with: the palette is black, the count the one asked for
};

/// Makes one palette for all frames. `count` tells the most colours wanted (1 to 256; anything else is 256)
/// and, when one was made, how many there are: none only when there are no pixels. Entries beyond are zero;
/// after a failure the whole palette is, and the count is as it was.
PaletteResult ComputeOptimalPalette(const FrameList& frames, int& count, Palette& palette,
                                    const Runner& runner);

/// Sorts the first `count` entries, 0 to 256, from dark to light; equally light ones keep their order.
void SortByLuminance(Palette& palette, int count);

} // namespace lumafold
