// Spikes and Soft slide: a mask larger than the frame, white where the target shows, is drawn and blurred
// once. Each frame looks at it through a window that moves from the black end towards the white one.
#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/run.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

/// Where the target moves to: right from the left side, or down from the top.
enum class Travel { Right, Down };

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

/// White above, or left of, `count` teeth whose tips point along the travel; a frame is one of `frame`'s
/// size. The mask is three frames long and a little broader than the frame where the teeth need it.
Mask SpikeMaskVertical(WindowHandle window, CanvasSize frame, std::int64_t count) {
    return SpikeMask(window, frame, Travel::Down, count);
}
Mask SpikeMaskHorizontal(WindowHandle window, CanvasSize frame, std::int64_t count) {
    return SpikeMask(window, frame, Travel::Right, count);
}

Mask SlideMask(WindowHandle window, CanvasSize frame, Travel travel) {
    const std::int64_t across = 2 * Across(travel, frame), along = 2 * Along(travel, frame);
    const Extent canvas = Place(travel, across, 2 * along);
    return DrawHalvedMask(window, canvas.x, canvas.y, [=](ShapeCanvas& shapes) {
        const Extent white = Place(travel, across, along);
        shapes.FillRect(0, 0, static_cast<std::int32_t>(white.x), static_cast<std::int32_t>(white.y));
    });
}

/// Two frames long, the upper, or left, one white and the other black.
Mask SlideMaskVertical(WindowHandle window, CanvasSize frame) {
    return SlideMask(window, frame, Travel::Down);
}
Mask SlideMaskHorizontal(WindowHandle window, CanvasSize frame) {
    return SlideMask(window, frame, Travel::Right);
}

Mask Blurred(Mask mask, std::uint32_t radius) {
    constexpr std::int32_t kSigma = 100; // tenths of a pixel
    return mask ? MaskGaussianBlur(std::move(mask), static_cast<std::int32_t>(radius), kSigma) : Mask();
}

/// Where the window stands in frame `index`, of the whole `distance`. It is kept in single precision from
/// frame to frame, with the rounding of each (docs/quirks.md 14).
std::int32_t WindowAt(std::int64_t index, std::int32_t distance, std::int64_t step) {
    const ExtendedPrecision precision;
    const long double way =
        Extended(static_cast<long double>(distance * step) * static_cast<long double>(0.01));
    auto offset = static_cast<float>(distance);
    for (std::int64_t i = 0; i <= index; ++i)
        offset = static_cast<float>(Extended(static_cast<long double>(offset) - way));
    return static_cast<std::int32_t>(std::floor(offset));
}

/// What both families have in common: a frame is what a window shows that moves along their mask.
struct MovingMask {
    std::int64_t step; ///< percent of the way a frame
    Travel travel;

    std::int64_t Frames() const { return FramesBelow(100, step); }
    OwnedDib Frame(const Gap& gap, const Mask& mask, std::int64_t index) const {
        const std::int32_t restX = mask.Width() - gap.size.width, restY = mask.Height() - gap.size.height;
        const bool down = travel == Travel::Down;
        return MaskBlend(gap.target, gap.source, mask, down ? restX / 2 : WindowAt(index, restX, step),
                         down ? WindowAt(index, restY, step) : restY / 2);
    }
};

struct Spikes : MovingMask {
    std::int64_t count; ///< teeth

    static std::optional<Spikes> Plan(const PluginSettings& settings, CanvasSize canvas, Travel travel) {
        const std::int64_t count = settings.TransitionSpikeCount, step = settings.TransitionSpikeStep;
        if (count == 0 || step == 0) return {};
        // No picture could hold more teeth than these.
        constexpr std::int64_t kMostPixels = 0x7FFFFFFF / 3;
        const std::int64_t length = 6 * Along(travel, canvas);
        if (Teeth(count, Across(travel, canvas)).Breadth() > kMostPixels / length) return {};
        return Spikes{{step, travel}, count};
    }
    static RenderNeed Need(const PluginSettings&, Travel) { return {8, 1}; }
    Mask Start(const Gap& gap) const {
        const auto draw = travel == Travel::Down ? SpikeMaskVertical : SpikeMaskHorizontal;
        return Blurred(draw(gap.window, gap.size, count), gap.settings.TransitionSpikeRadius);
    }
};

struct SoftSlide : MovingMask {
    static std::optional<SoftSlide> Plan(const PluginSettings& settings, CanvasSize, Travel travel) {
        if (settings.TransitionSoftSlideStep == 0) return {};
        return SoftSlide{{settings.TransitionSoftSlideStep, travel}};
    }
    static RenderNeed Need(const PluginSettings&, Travel) { return {5, 1}; }
    Mask Start(const Gap& gap) const {
        const auto draw = travel == Travel::Down ? SlideMaskVertical : SlideMaskHorizontal;
        return Blurred(draw(gap.window, gap.size), gap.settings.TransitionSoftSlideRadius);
    }
};

} // namespace

constinit const Effect kSpikesHorizontal = EffectOf<Spikes, Travel::Right>();
constinit const Effect kSpikesVertical = EffectOf<Spikes, Travel::Down>();
constinit const Effect kSoftSlideHorizontal = EffectOf<SoftSlide, Travel::Right>();
constinit const Effect kSoftSlideVertical = EffectOf<SoftSlide, Travel::Down>();

} // namespace lumafold
