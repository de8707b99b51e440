#include "transitions/moving_masks.h"

#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

constexpr std::int32_t kSigma = 100; // tenths of a pixel

/// Width and height, or x and y, from what lies across the travel and what lies along it.
struct Extent {
    std::int64_t x, y;
};
constexpr Extent Place(Travel travel, std::int64_t across, std::int64_t along) {
    return travel == Travel::Down ? Extent{across, along} : Extent{along, across};
}
constexpr std::int64_t Across(Travel travel, CanvasSize size) {
    return travel == Travel::Down ? size.width : size.height;
}
constexpr std::int64_t Along(Travel travel, CanvasSize size) {
    return travel == Travel::Down ? size.height : size.width;
}

/// A row of teeth across the frame, in pixels of the drawing canvas, which is twice as fine as the mask.
struct Teeth {
    std::int64_t count, halfWidth;

    Teeth(std::int64_t number, std::int64_t across)
        : count(number), halfWidth((2 * across + 2 * number - 1) / (2 * number)) {}
    /// As wide as the frame or a little wider, since every tooth has the same whole width.
    std::int64_t Breadth() const { return 2 * count * halfWidth; }
};

Mask SpikeMask(WindowHandle window, CanvasSize frame, Travel travel, std::int64_t count) {
    const std::int64_t along = Along(travel, frame);
    const Teeth teeth(count, Across(travel, frame));
    const Extent canvas = Place(travel, teeth.Breadth(), 6 * along);
    return DrawHalvedMask(window, canvas.x, canvas.y, [=](ShapeCanvas& shapes) {
        const auto corner = [=](std::int64_t halfTeeth, std::int64_t reach) {
            const Extent at = Place(travel, halfTeeth * teeth.halfWidth, reach);
            return ShapePoint{static_cast<std::int32_t>(at.x), static_cast<std::int32_t>(at.y)};
        };
        // One by one, so that any number of teeth can be had: they cover what their common outline would.
        for (std::int64_t i = 0; i < 2 * teeth.count; i += 2) {
            const ShapePoint tooth[] = {corner(i, 0), corner(i, 2 * along), corner(i + 1, 4 * along),
                                        corner(i + 2, 2 * along), corner(i + 2, 0)};
            shapes.Polygon(tooth);
        }
    });
}

Mask SlideMask(WindowHandle window, CanvasSize frame, Travel travel) {
    const std::int64_t across = 2 * Across(travel, frame), along = 2 * Along(travel, frame);
    const Extent canvas = Place(travel, across, 2 * along);
    return DrawHalvedMask(window, canvas.x, canvas.y, [=](ShapeCanvas& shapes) {
        const Extent white = Place(travel, across, along);
        shapes.FillRect(0, 0, static_cast<std::int32_t>(white.x), static_cast<std::int32_t>(white.y));
    });
}

Mask Blurred(const Mask& mask, std::uint32_t radius) {
    return mask ? MaskGaussianBlur(mask, static_cast<std::int32_t>(radius), kSigma) : Mask();
}

std::int64_t FramesUpTo100(std::int64_t step) { return LoopCount(step, 100, step); }

/// Kept in single precision from frame to frame, with the rounding of each (docs/quirks.md 14).
float Advance(float offset, std::int32_t distance, std::int64_t step) {
    const ExtendedPrecision precision;
    const long double way =
        Extended(static_cast<long double>(distance * step) * static_cast<long double>(0.01));
    return static_cast<float>(Extended(static_cast<long double>(offset) - way));
}

} // namespace

Mask SpikeMaskVertical(WindowHandle window, CanvasSize frame, std::int64_t count) {
    return SpikeMask(window, frame, Travel::Down, count);
}
Mask SpikeMaskHorizontal(WindowHandle window, CanvasSize frame, std::int64_t count) {
    return SpikeMask(window, frame, Travel::Right, count);
}
Mask SlideMaskVertical(WindowHandle window, CanvasSize frame) {
    return SlideMask(window, frame, Travel::Down);
}
Mask SlideMaskHorizontal(WindowHandle window, CanvasSize frame) {
    return SlideMask(window, frame, Travel::Right);
}

MovingMask::MovingMask(const Gap& gap, Mask mask, Travel travel, std::int64_t step)
    : gap_(gap), mask_(std::move(mask)), travel_(travel) {
    if (!mask_) return;
    const std::int32_t distance =
        travel == Travel::Down ? mask_.Height() - gap.size.height : mask_.Width() - gap.size.width;
    auto offset = static_cast<float>(distance);
    for (std::size_t i = 0; i < static_cast<std::size_t>(FramesUpTo100(step)); ++i) {
        offset = Advance(offset, distance, step);
        offsets_[i] = static_cast<std::int32_t>(std::floor(offset));
    }
}

OwnedDib MovingMask::Frame(std::int64_t index) const {
    const std::int32_t offset = offsets_[static_cast<std::size_t>(index)];
    const bool down = travel_ == Travel::Down;
    const std::int32_t left = down ? (mask_.Width() - gap_.size.width) / 2 : offset;
    const std::int32_t top = down ? offset : (mask_.Height() - gap_.size.height) / 2;
    return MaskBlend(gap_.target, gap_.source, mask_, left, top);
}

template <Travel kTravel>
std::optional<Spikes<kTravel>> Spikes<kTravel>::Plan(const PluginSettings& settings, CanvasSize canvas) {
    const std::int64_t count = settings.TransitionSpikeCount, step = settings.TransitionSpikeStep;
    if (count == 0 || step == 0) return {};
    // No picture could hold more teeth than these.
    constexpr std::int64_t kMostPixels = 0x7FFFFFFF / 3;
    const std::int64_t length = 6 * Along(kTravel, canvas);
    if (Teeth(count, Across(kTravel, canvas)).Breadth() > kMostPixels / length) return {};
    return Spikes(count, step);
}

template <Travel kTravel>
std::int64_t Spikes<kTravel>::Frames() const {
    return FramesUpTo100(step_);
}

template <Travel kTravel>
MovingMask Spikes<kTravel>::Start(const Gap& gap) const {
    const Mask mask = SpikeMask(gap.window, gap.size, kTravel, count_);
    return {gap, Blurred(mask, gap.settings.TransitionSpikeRadius), kTravel, step_};
}

template class Spikes<Travel::Right>;
template class Spikes<Travel::Down>;

template <Travel kTravel>
std::optional<SoftSlide<kTravel>> SoftSlide<kTravel>::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionSoftSlideStep == 0) return {};
    return SoftSlide(settings.TransitionSoftSlideStep);
}

template <Travel kTravel>
std::int64_t SoftSlide<kTravel>::Frames() const {
    return FramesUpTo100(step_);
}

template <Travel kTravel>
MovingMask SoftSlide<kTravel>::Start(const Gap& gap) const {
    const Mask mask = SlideMask(gap.window, gap.size, kTravel);
    return {gap, Blurred(mask, gap.settings.TransitionSoftSlideRadius), kTravel, step_};
}

template class SoftSlide<Travel::Right>;
template class SoftSlide<Travel::Down>;

} // namespace lumafold
