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

/// How often a loop `for (p = first; p < limit; p += step)` runs, step > 0.
constexpr std::int64_t LoopCount(std::int64_t first, std::int64_t limit, std::int64_t step) {
    return first >= limit ? 0 : (limit - first + step - 1) / step;
}

} // namespace lumafold
