#include "codecs/delays.h"

#include <algorithm>
#include <numeric>

namespace lumafold {

std::size_t HoldShortFrames(std::span<std::int32_t> delays) {
    std::size_t held = 0;
    std::int64_t owed = 0;
    const auto repay = [&](std::int32_t& delay) {
        const std::int64_t taken = std::min<std::int64_t>(owed, delay - kShortestPlayed);
        owed -= taken;
        delay -= static_cast<std::int32_t>(taken);
    };
    for (std::int32_t& delay : delays) {
        delay = std::max(delay, 0);
        if (delay < kShortestPlayed) {
            ++held;
            owed += kShortestPlayed - delay;
            delay = kShortestPlayed;
        } else {
            repay(delay);
        }
    }
    for (std::int32_t& delay : delays)
        repay(delay);
    return held;
}

std::int32_t CommonDelay(std::span<const std::int32_t> delays) {
    return std::accumulate(delays.begin(), delays.end(), 0, [](std::int32_t common, std::int32_t delay) {
        return std::gcd(common, std::max(delay, 0));
    });
}

} // namespace lumafold
