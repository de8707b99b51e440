// Who takes the frames of a build while the host is handed them, so that nobody keeps a second copy of all.
#pragma once

#include "codecs/animation.h"

namespace lumafold {

/// Members throw AnimationError and std::bad_alloc, and are called no more after that.
class FrameSink {
public:
    virtual ~FrameSink() = default;

    /// Before the first frame; `frames` is how many the task said would follow.
    virtual void Begin(const AnimationFacts& facts, std::size_t frames) = 0;
    /// The picture is good for as long as the call lasts.
    virtual void Add(const FrameView& frame) = 0;
};

} // namespace lumafold
