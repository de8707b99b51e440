// Quad: the target's four quarters grow, each from the middle of its own place, over the source; or the
// source's shrink there and uncover the target.
#include "image/resample.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

/// Lays one quarter of `picture`, scaled, into the middle of its place. Every place is half the frame,
/// truncated, so that the larger quarters of odd sizes are centred in a place one pixel too small: wanted.
bool LayQuarter(DibHeader* frame, DibHandle picture, const Rect& quarter, std::int32_t percent) {
    const OwnedDib piece(DibCropRect(picture, quarter, 0));
    if (!piece) return false;
    const OwnedDib scaled(DibScale(piece.Get(), percent, percent));
    const LockedDib locked(scaled.Get());
    if (!locked) return false;
    const std::int32_t x = (frame->biWidth / 2 - locked->biWidth) / 2 + quarter.left;
    const std::int32_t y = (frame->biHeight / 2 - locked->biHeight) / 2 + quarter.top;
    DibCopyRect(frame, x, y, locked.Get(), 0, 0, locked->biWidth, locked->biHeight);
    return true;
}

OwnedDib QuadFrame(DibHandle background, DibHandle picture, std::int32_t width, std::int32_t height,
                   std::int32_t percent) {
    OwnedDib frame(GlobalDuplicate(background));
    const LockedDib locked(frame.Get());
    if (!locked) return {};
    const std::int32_t halfWidth = width / 2, halfHeight = height / 2;
    const Rect quarters[] = {{0, 0, halfWidth, halfHeight},
                             {halfWidth, 0, width, halfHeight},
                             {0, halfHeight, halfWidth, height},
                             {halfWidth, halfHeight, width, height}};
    for (const Rect& quarter : quarters) {
        if (!LayQuarter(locked.Get(), picture, quarter, percent)) return {};
    }
    return frame;
}

enum class Direction { Expand, Contract };

int Quad(TransitionContext& context, Direction direction) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionQuadStepSize;
    if (!run || step == 0) return kEffectFailed;
    const bool expand = direction == Direction::Expand;
    const DibHandle background = expand ? context.image : context.nextImage;
    const DibHandle picture = expand ? context.nextImage : context.image;
    // A step short of 100, so that a step of 50 shows nothing between: wanted.
    for (std::int64_t p = step; p < 100 - step; p += step) {
        const auto percent = static_cast<std::int32_t>(expand ? p : 100 - p);
        if (!run.Emit(QuadFrame(background, picture, run.Width(), run.Height(), percent)))
            return kEffectFailed;
    }
    return kEffectDone;
}

std::int64_t QuadFrames() {
    const std::int64_t step = pluginSettings.TransitionQuadStepSize;
    return step == 0 ? 0 : 1 + LoopCount(step, 100 - step, step);
}

} // namespace

int QuadContract(TransitionContext& context) { return Quad(context, Direction::Contract); }
int QuadExpand(TransitionContext& context) { return Quad(context, Direction::Expand); }
std::int64_t QuadContractFrames(CanvasSize) { return QuadFrames(); }
std::int64_t QuadExpandFrames(CanvasSize) { return QuadFrames(); }

} // namespace lumafold
