#include "hosts/common/play_times.h"

#include <algorithm>

namespace lumafold {

std::size_t LengthenShortFrames(Animation& animation) {
    std::size_t shorter = 0;
    std::int64_t owed = 0;
    // In the second round nothing is short; what is owed still is taken from the beginning.
    for (int round = 0; round < 2; ++round) {
        for (AnimationFrame& frame : animation.frames) {
            if (frame.delay < kShortestDelay) {
                owed += kShortestDelay - frame.delay;
                frame.delay = kShortestDelay;
                ++shorter;
            }
            const std::int64_t taken = std::min<std::int64_t>(owed, frame.delay - kShortestDelay);
            frame.delay -= static_cast<std::int32_t>(taken);
            owed -= taken;
        }
        if (owed == 0) break;
    }
    return shorter;
}

} // namespace lumafold
