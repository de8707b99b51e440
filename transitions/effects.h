// Every effect of the table: its function, and how many frames it appends, the still frame included.
#pragma once

#include "transitions/table.h"

namespace lumafold {

struct CanvasSize {
    std::int32_t width, height;
};
using FrameCounter = std::int64_t (*)(CanvasSize canvas);

// none.cpp
int None(TransitionContext& context);
std::int64_t NoneFrames(CanvasSize canvas);

// iris.cpp
int SoftIrisDiamond(TransitionContext& context);
int SoftIrisEllipse(TransitionContext& context);
int SilentMovie(TransitionContext& context);
std::int64_t SoftIrisDiamondFrames(CanvasSize canvas);
std::int64_t SoftIrisEllipseFrames(CanvasSize canvas);
std::int64_t SilentMovieFrames(CanvasSize canvas);

} // namespace lumafold
