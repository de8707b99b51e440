// Spikes and Soft slide: a mask larger than the frame, white where the target shows, is drawn and blurred
// once. Each frame looks at it through a window that moves from the black end towards the white one.
#pragma once

#include "transitions/gap.h"
#include "transitions/mask.h"

namespace lumafold {

/// Where the target moves to: right from the left side, or down from the top.
enum class Travel { Right, Down };

/// White above, or left of, `count` teeth whose tips point along the travel; a frame is one of `frame`'s
/// size. The mask is three frames long and a little broader than the frame where the teeth need it.
Mask SpikeMaskVertical(WindowHandle window, CanvasSize frame, std::int64_t count);
Mask SpikeMaskHorizontal(WindowHandle window, CanvasSize frame, std::int64_t count);

/// Two frames long, the upper, or left, one white and the other black.
Mask SlideMaskVertical(WindowHandle window, CanvasSize frame);
Mask SlideMaskHorizontal(WindowHandle window, CanvasSize frame);

/// The frames through a moving window on a mask.
class MovingMask {
public:
    /// Empty when there is no mask. `step` is the percentage of the way a frame, above 0.
    MovingMask(const Gap& gap, Mask mask, Travel travel, std::int64_t step);
    explicit operator bool() const { return static_cast<bool>(mask_); }
    OwnedDib Frame(std::int64_t index) const;

private:
    const Gap& gap_;
    Mask mask_;
    Travel travel_;
    std::array<std::int32_t, 100> offsets_{}; ///< of the window along the travel, a frame each
};

template <Travel kTravel>
class Spikes {
public:
    static std::optional<Spikes> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    MovingMask Start(const Gap& gap) const;

private:
    Spikes(std::int64_t count, std::int64_t step) : count_(count), step_(step) {}

    std::int64_t count_; ///< teeth
    std::int64_t step_;  ///< percent of the way a frame
};

template <Travel kTravel>
class SoftSlide {
public:
    static std::optional<SoftSlide> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    MovingMask Start(const Gap& gap) const;

private:
    explicit SoftSlide(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent of the way a frame
};

} // namespace lumafold
