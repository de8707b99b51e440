#include "codecs/delays.h"

#include <algorithm>
#include <numeric>

namespace lumafold {

void HeldDelays::Repay(std::int32_t& delay) {
    const std::int64_t taken = std::min<std::int64_t>(owed_, delay - kShortestPlayed);
    owed_ -= taken;
    delay -= static_cast<std::int32_t>(taken);
}

std::int32_t HeldDelays::Add(std::int32_t delay) {
    delay = std::max(delay, 0);
    if (delay < kShortestPlayed) {
        ++short_;
        owed_ += kShortestPlayed - delay;
        delay = kShortestPlayed;
    } else {
        Repay(delay);
    }
    delays_.push_back(delay);
    return delay;
}

const std::vector<std::int32_t>& HeldDelays::Settle() {
    for (std::int32_t& delay : delays_)
        Repay(delay);
    return delays_;
}

std::int32_t CommonDelay(std::span<const std::int32_t> delays) {
    return std::accumulate(delays.begin(), delays.end(), 0, [](std::int32_t common, std::int32_t delay) {
        return std::gcd(common, std::max(delay, 0));
    });
}

} // namespace lumafold
