// Which frame is on screen when: an animation's delays against a clock that the owner reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumafold {

/// Times are milliseconds of a clock that may wrap round, as the system's does.
class Playback {
public:
    Playback() = default;
    /// In hundredths of a second. A frame without a delay stays for a tenth, as viewers have it.
    explicit Playback(const std::vector<std::int32_t>& delays);

    std::size_t Count() const { return durations_.size(); }
    std::size_t Current() const { return current_; }
    bool IsPlaying() const { return playing_; }
    std::int64_t TotalMilliseconds() const;
    /// When the frame begins, counted from the first.
    std::int64_t StartOf(std::size_t index) const;

    /// An animation of one frame never plays.
    void Play(std::uint32_t now);
    void Pause() { playing_ = false; }
    /// Both pause. A step past either end goes round; an index past the end goes to the last frame.
    void Step(int by);
    void Go(std::size_t index);

    /// Moves to the frame that is due; true when that is another one. Who was asleep for long goes on from
    /// where he was.
    bool Advance(std::uint32_t now);
    /// Until Advance has something to do; at least 1.
    std::uint32_t MillisecondsLeft(std::uint32_t now) const;

private:
    std::vector<std::uint32_t> durations_;
    std::size_t current_ = 0;
    bool playing_ = false;
    std::uint32_t shownAt_ = 0;
};

} // namespace lumafold
