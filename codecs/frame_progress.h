// How far a writer has come, and whether it is to go on.
#pragma once

#include <cstddef>
#include <functional>

#include "codecs/frame_changes.h"

namespace lumafold {

/// Told of each frame before it is worked on, on the writer's thread; false gives up, and the writer fails
/// with the error "cancelled". Empty where nobody asks.
using FrameProgress = std::function<bool(std::size_t frame, std::size_t frames)>;

/// For the writers.
inline void GoOnWith(std::size_t frame, std::size_t frames, const FrameProgress& progress) {
    if (progress && !progress(frame, frames)) throw AnimationError{"cancelled"};
}

} // namespace lumafold
