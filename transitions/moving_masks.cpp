// Spikes and Soft slide: a mask larger than the frame, white where the target shows, is drawn and blurred
// once. Each frame looks at it through a window that moves from the black end towards the white one.
#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

constexpr std::int32_t kSigma = 100; // tenths of a pixel

/// Where the target enters to: down from the top, or right from the left side.
enum class Travel { Down, Right };

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

/// White above, or left of, the teeth, whose tips point along the travel.
DibHandle SpikeMask(WindowHandle window, CanvasSize frame, Travel travel, std::int64_t count) {
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

/// The first half white, the second black.
DibHandle SlideMask(WindowHandle window, CanvasSize frame, Travel travel) {
    const std::int64_t across = 2 * Across(travel, frame), along = 2 * Along(travel, frame);
    const Extent canvas = Place(travel, across, 2 * along);
    return DrawHalvedMask(window, canvas.x, canvas.y, [=](ShapeCanvas& shapes) {
        const Extent white = Place(travel, across, along);
        shapes.FillRect(0, 0, static_cast<std::int32_t>(white.x), static_cast<std::int32_t>(white.y));
    });
}

/// Kept in single precision from frame to frame, rounding and all: wanted.
float Advance(float offset, std::int32_t distance, std::int64_t step) {
    const ExtendedPrecision precision;
    const auto way = static_cast<long double>(distance * step) * static_cast<long double>(0.01);
    return static_cast<float>(static_cast<long double>(offset) - way);
}

OwnedDib FrameThrough(const EffectRun& run, DibHandle mask, std::int32_t left, std::int32_t top) {
    const OwnedDib window(DibCropRect(mask, {left, top, left + run.Width(), top + run.Height()}, 0));
    const LockedDib locked(window.Get());
    return locked ? OwnedDib(DibMaskBlend(run.Target(), run.Source(), locked.Get())) : OwnedDib();
}

OwnedDib Blurred(OwnedDib mask, std::uint32_t radius) {
    return mask ? OwnedDib(DibGaussianBlur(mask.Get(), static_cast<std::int32_t>(radius), kSigma))
                : OwnedDib();
}

int MoveMask(EffectRun& run, OwnedDib mask, Travel travel, std::int64_t step) {
    std::int32_t width = 0, height = 0;
    if (!mask || !DibQuery(mask.Get(), &width, &height, nullptr, nullptr)) return kEffectFailed;
    const std::int32_t roomX = width - run.Width(), roomY = height - run.Height();
    const std::int32_t distance = travel == Travel::Down ? roomY : roomX;
    auto offset = static_cast<float>(distance);
    for (std::int64_t p = step; p < 100; p += step) {
        offset = Advance(offset, distance, step);
        const auto at = static_cast<std::int32_t>(std::floor(offset));
        OwnedDib frame = travel == Travel::Down ? FrameThrough(run, mask.Get(), roomX / 2, at)
                                                : FrameThrough(run, mask.Get(), at, roomY / 2);
        if (!run.Emit(std::move(frame))) return kEffectFailed;
    }
    return kEffectDone;
}

int Spikes(TransitionContext& context, Travel travel) {
    EffectRun run(context);
    const std::int64_t count = pluginSettings.TransitionSpikeCount, step = pluginSettings.TransitionSpikeStep;
    if (!run || count == 0 || step == 0) return kEffectFailed;
    OwnedDib mask(SpikeMask(run.Window(), {run.Width(), run.Height()}, travel, count));
    return MoveMask(run, Blurred(std::move(mask), pluginSettings.TransitionSpikeRadius), travel, step);
}

int SoftSlide(TransitionContext& context, Travel travel) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionSoftSlideStep;
    if (!run || step == 0) return kEffectFailed;
    OwnedDib mask(SlideMask(run.Window(), {run.Width(), run.Height()}, travel));
    return MoveMask(run, Blurred(std::move(mask), pluginSettings.TransitionSoftSlideRadius), travel, step);
}

std::int64_t FramesUpTo100(std::int64_t step) { return step == 0 ? 0 : 1 + LoopCount(step, 100, step); }

std::int64_t SpikesFrames(CanvasSize canvas, Travel travel) {
    const std::int64_t count = pluginSettings.TransitionSpikeCount;
    if (count == 0) return 0;
    // So many teeth that no picture could hold them: the effect fails.
    constexpr std::int64_t kMostPixels = 0x7FFFFFFF / 3;
    const std::int64_t length = 6 * Along(travel, canvas);
    if (Teeth(count, Across(travel, canvas)).Breadth() > kMostPixels / length) return 0;
    return FramesUpTo100(pluginSettings.TransitionSpikeStep);
}

} // namespace

int SpikesHorizontal(TransitionContext& context) { return Spikes(context, Travel::Right); }
int SpikesVertical(TransitionContext& context) { return Spikes(context, Travel::Down); }
int SoftSlideHorizontal(TransitionContext& context) { return SoftSlide(context, Travel::Right); }
int SoftSlideVertical(TransitionContext& context) { return SoftSlide(context, Travel::Down); }

std::int64_t SpikesHorizontalFrames(CanvasSize canvas) { return SpikesFrames(canvas, Travel::Right); }
std::int64_t SpikesVerticalFrames(CanvasSize canvas) { return SpikesFrames(canvas, Travel::Down); }
std::int64_t SoftSlideHorizontalFrames(CanvasSize) {
    return FramesUpTo100(pluginSettings.TransitionSoftSlideStep);
}
std::int64_t SoftSlideVerticalFrames(CanvasSize) {
    return FramesUpTo100(pluginSettings.TransitionSoftSlideStep);
}

} // namespace lumafold
