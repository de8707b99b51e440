// What an effect renders from: the gap between two stills, for reading only.
#pragma once

#include "image/dib.h"
#include "platform/window_handle.h"
#include "settings/settings.h"

namespace lumafold {

struct CanvasSize {
    std::int32_t width, height;
};

/// Everything in it outlives the rendering of the gap.
struct Gap {
    const DibHeader& source; ///< where the transition starts: 24 bits, of the canvas's size
    const DibHeader& target; ///< where it ends, the same
    CanvasSize size;
    const PluginSettings& settings;
    WindowHandle window; ///< gives a drawing context to be compatible with; 0 is the screen
};

/// What rendering a gap holds besides its pictures and the frames made, in bytes a pixel of the canvas.
struct RenderNeed {
    double gap = 0;   ///< once
    double frame = 0; ///< for each frame at work
};

/// How often a loop `for (p = first; p < limit; p += step)` runs, step > 0.
constexpr std::int64_t LoopCount(std::int64_t first, std::int64_t limit, std::int64_t step) {
    return first >= limit ? 0 : (limit - first + step - 1) / step;
}

/// How many frames show a share of a whole that rises by `step` a frame, up to below `whole`.
constexpr std::int64_t FramesBelow(std::int64_t whole, std::int64_t step) {
    return LoopCount(step, whole, step);
}

/// Half of a fade's 255 levels, rounded up: what rises with a fade falls from there on.
inline constexpr std::int64_t kLastRising = 128;

/// How many steps of a fade of `step` levels a frame its frame `index` stands at: up to half the fade one
/// more each, then back through the same values, so that the curve is symmetric in frames whatever the step;
/// past its end the first one stays. 0 for a step beyond half the fade, which leaves none to take back.
constexpr std::int64_t RiseAndFall(std::int64_t index, std::int64_t step) {
    const std::int64_t rising = kLastRising / step;
    if (rising == 0) return 0;
    return index < rising ? index + 1 : std::max<std::int64_t>(2 * rising - 1 - index, 0) + 1;
}

} // namespace lumafold
