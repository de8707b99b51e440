// How long the frames of an animation are seen, in hundredths of a second, as those who play it need it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumafold {

/// Browsers play frames of less than this as if they were told a tenth of a second.
inline constexpr std::int32_t kShortestPlayed = 2;

/// Holds every frame for at least `kShortestPlayed`. The time is taken from the frames that follow, from the
/// first again behind the last, so that the whole keeps its length where it has enough of it. Delays below 0
/// count as 0.
class HeldDelays {
public:
    /// The next frame's delay, as it is as long as no frame behind the last is owed anything.
    std::int32_t Add(std::int32_t delay);
    /// How many frames were too short so far.
    std::size_t Short() const { return short_; }
    /// The delays of all frames, of which there are no more to come.
    const std::vector<std::int32_t>& Settle();

private:
    void Repay(std::int32_t& delay);

    std::vector<std::int32_t> delays_;
    std::size_t short_ = 0;
    std::int64_t owed_ = 0;
};

/// The greatest time that every delay is a multiple of; 0 where no frame is seen at all.
std::int32_t CommonDelay(std::span<const std::int32_t> delays);

} // namespace lumafold
