// How long the frames of an animation are seen, in hundredths of a second, as those who play it need it.
#pragma once

#include <cstdint>
#include <span>

namespace lumafold {

/// Browsers play frames of less than this as if they were told a tenth of a second.
inline constexpr std::int32_t kShortestPlayed = 2;

/// Holds every frame for at least `kShortestPlayed`. The time is taken from the frames that follow, from the
/// first again behind the last, so that the whole keeps its length where it has enough of it. Delays below 0
/// count as 0. The number of frames that were too short.
std::size_t HoldShortFrames(std::span<std::int32_t> delays);

/// The greatest time that every delay is a multiple of; 0 where no frame is seen at all.
std::int32_t CommonDelay(std::span<const std::int32_t> delays);

} // namespace lumafold
