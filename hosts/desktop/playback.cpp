#include "hosts/desktop/playback.h"

#include <algorithm>
#include <numeric>

namespace lumafold {
namespace {

constexpr std::uint32_t kWithoutDelay = 100;
constexpr std::uint32_t kLate = 500; ///< beyond this frames are not made up for

} // namespace

Playback::Playback(const std::vector<std::int32_t>& delays) {
    constexpr std::int32_t kMostDelay = 360000; // an hour
    for (const std::int32_t delay : delays)
        durations_.push_back(delay <= 0 ? kWithoutDelay
                                        : static_cast<std::uint32_t>(std::min(delay, kMostDelay)) * 10);
}

std::int64_t Playback::TotalMilliseconds() const { return StartOf(Count()); }

std::int64_t Playback::StartOf(std::size_t index) const {
    const auto end = durations_.begin() + static_cast<std::ptrdiff_t>(std::min(index, Count()));
    return std::accumulate(durations_.begin(), end, std::int64_t{0});
}

void Playback::Play(std::uint32_t now) {
    playing_ = Count() > 1;
    shownAt_ = now;
}

void Playback::Step(int by) {
    if (Count() == 0) return;
    const auto count = static_cast<std::ptrdiff_t>(Count());
    const std::ptrdiff_t moved = (static_cast<std::ptrdiff_t>(current_) + by) % count;
    Go(static_cast<std::size_t>(moved < 0 ? moved + count : moved));
}

void Playback::Go(std::size_t index) {
    Pause();
    current_ = std::min(index, Count() - (Count() > 0 ? 1 : 0));
}

bool Playback::Advance(std::uint32_t now) {
    if (!playing_) return false;
    const std::size_t before = current_;
    std::uint32_t passed = now - shownAt_;
    if (passed > durations_[current_] + kLate) {
        passed = durations_[current_];
        shownAt_ = now - passed;
    }
    while (passed >= durations_[current_]) {
        passed -= durations_[current_];
        shownAt_ += durations_[current_];
        current_ = current_ + 1 < Count() ? current_ + 1 : 0;
    }
    return current_ != before;
}

std::uint32_t Playback::MillisecondsLeft(std::uint32_t now) const {
    if (!playing_) return 1;
    const std::uint32_t passed = now - shownAt_;
    return std::max(durations_[current_], passed + 1) - passed;
}

} // namespace lumafold
