// Backscatter: the target pushes the source out of the frame behind a glowing seam, and pixels near the seam
// are thrown about. The two directions differ on purpose in the order of their points and in their thinning.
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/random.h"

#include <cstdlib>

namespace lumafold {
namespace {

enum class Axis { Horizontal, Vertical };

// A hundred times what the dialog allows. The scatter takes draws for every point of the band, inside the
// picture or not, so that a larger size would only ever wait.
constexpr std::uint32_t kLargestSize = 10000;

bool CanRun() {
    return pluginSettings.TransitionSparkleStep != 0 && pluginSettings.TransitionSparkleSize <= kLargestSize;
}

OwnedDib NewFrame(const DibHeader* target) {
    Palette palette;
    DibGetPalette(target, palette);
    return OwnedDib(DibCreate(target->biWidth, target->biHeight, &palette, target->biBitCount));
}

/// Where the seam stands at `percent`: by the height in both directions. So on a wide picture the horizontal
/// push stops short of the edge, and on a tall one it leaves columns black: wanted.
std::int32_t SeamAt(const DibHeader* target, std::int64_t percent) {
    return static_cast<std::int32_t>(target->biHeight * percent / 100);
}

OwnedDib PushWipe(Axis axis, const DibHeader* target, const DibHeader* source, std::int32_t seam) {
    OwnedDib frame = NewFrame(target);
    const LockedDib out(frame.Get());
    if (!out) return {};
    const std::int32_t width = target->biWidth, height = target->biHeight;
    if (axis == Axis::Vertical) {
        DibCopyRect(out.Get(), 0, 0, target, 0, height - seam, width, seam);
        DibCopyRect(out.Get(), 0, seam, source, 0, 0, width, height - seam);
    } else {
        DibCopyRect(out.Get(), 0, 0, target, width - seam, 0, seam, height);
        DibCopyRect(out.Get(), seam, 0, source, 0, 0, width - seam, height);
    }
    return frame;
}

/// The colour with each channel shifted down.
PixelValue Dimmed(PixelValue colour, int shift) {
    return MakeColour(RedOf(colour) >> shift, GreenOf(colour) >> shift, BlueOf(colour) >> shift);
}

void DrawSeam(Axis axis, DibHeader* frame, std::int32_t seam, PixelValue colour) {
    const PixelValue line[] = {Dimmed(colour, 2), Dimmed(colour, 1), colour, Dimmed(colour, 1),
                               Dimmed(colour, 2)};
    const std::int32_t length = axis == Axis::Vertical ? frame->biWidth : frame->biHeight;
    for (std::int32_t i = 0; i < length; ++i) {
        std::int32_t across = seam - 2;
        for (const PixelValue value : line) {
            if (axis == Axis::Vertical) {
                DibSetPixel(frame, i, across++, value);
            } else {
                DibSetPixel(frame, across++, i, value);
            }
        }
    }
}

/// How far a point is thrown along one axis; a size of 0 draws nothing.
class Throw {
public:
    Throw(Random& random, std::int32_t size) : random_(random), size_(size) {}

    std::int32_t Offset() {
        if (size_ == 0) return 0;
        return static_cast<std::int32_t>(random_.Draw() % static_cast<std::uint32_t>(size_)) - size_ / 2;
    }
    /// Half of the points thrown far across stay where they are, by one more draw.
    bool StaysBehind(std::int32_t across) { return std::abs(across) > size_ / 4 && random_.Draw() % 2 != 0; }

private:
    Random& random_;
    std::int32_t size_;
};

// Both passes work in place and take their draws for points outside the picture too, so their order is part
// of the result: a point moved early may be picked up again.
void ScatterVertical(DibHeader* frame, std::int32_t seam, std::int32_t size, Throw point) {
    for (std::int32_t y = seam - size; y < seam + size; ++y) {
        for (std::int32_t x = 0; x < frame->biWidth; ++x) {
            const std::int32_t dx = point.Offset();
            const std::int32_t dy = point.Offset();
            if (!point.StaysBehind(dy)) DibSetPixel(frame, x + dx, y + dy, DibGetPixel(frame, x, y));
        }
    }
}

void ScatterHorizontal(DibHeader* frame, std::int32_t seam, std::int32_t size, Throw point) {
    for (std::int32_t y = 0; y < frame->biHeight; ++y) {
        for (std::int32_t x = seam - size; x < seam + size; ++x) {
            const std::int32_t dx = point.Offset();
            const std::int32_t dy = point.Offset();
            DibSetPixel(frame, x + dx, y + dy, DibGetPixel(frame, x, y));
        }
    }
}

/// Draws the seam and scatters what is near it. A frame that cannot be locked goes without.
void ScatterSeam(Axis axis, DibHandle frame, std::int64_t seam, Random& random) {
    const LockedDib locked(frame);
    if (!locked) return;
    // No picture reaches as far as that, so a seam held there touches what it would touch farther out:
    // nothing.
    constexpr std::int64_t kFarOut = 1 << 30;
    const auto at = static_cast<std::int32_t>(std::clamp(seam, -kFarOut, kFarOut));
    const auto size = static_cast<std::int32_t>(pluginSettings.TransitionSparkleSize);
    DrawSeam(axis, locked.Get(), at, pluginSettings.TransitionSparkleColor);
    if (axis == Axis::Vertical) {
        ScatterVertical(locked.Get(), at, size, Throw(random, size));
    } else {
        ScatterHorizontal(locked.Get(), at, size, Throw(random, size));
    }
}

int Backscatter(TransitionContext& context, Axis axis) {
    EffectRun run(context);
    if (!run || !CanRun()) return kEffectFailed;
    Random random(pluginSettings.RandomSeed);
    const auto emit = [&](std::int64_t percent, std::int64_t seam) {
        OwnedDib frame = PushWipe(axis, run.Target(), run.Source(), SeamAt(run.Target(), percent));
        if (!frame) return false;
        ScatterSeam(axis, frame.Get(), seam, random);
        return run.Emit(std::move(frame));
    };

    // The first and the last seam stand a step outside. With a step of 2 their outer lines still show:
    // wanted.
    const std::int64_t step = pluginSettings.TransitionSparkleStep;
    if (!emit(0, -step)) return kEffectFailed;
    for (std::int64_t p = step; p < 100; p += step) {
        if (!emit(p, SeamAt(run.Target(), p))) return kEffectFailed;
    }
    const std::int64_t end = axis == Axis::Vertical ? run.Height() : run.Width();
    return emit(100, end + step) ? kEffectDone : kEffectFailed;
}

std::int64_t BackscatterFrames() {
    const std::int64_t step = pluginSettings.TransitionSparkleStep;
    return CanRun() ? 1 + 1 + LoopCount(step, 100, step) + 1 : 0;
}

} // namespace

int BackscatterHorizontal(TransitionContext& context) { return Backscatter(context, Axis::Horizontal); }
int BackscatterVertical(TransitionContext& context) { return Backscatter(context, Axis::Vertical); }
std::int64_t BackscatterHorizontalFrames(CanvasSize) { return BackscatterFrames(); }
std::int64_t BackscatterVerticalFrames(CanvasSize) { return BackscatterFrames(); }

} // namespace lumafold
