// Soft iris and Silent movie: a soft-edged shape opens from the middle onto the target. Silent movie first
// closes it over the source onto a flat colour, as early films did.
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

constexpr std::int32_t kSigma = 100; // tenths of a pixel

using MaskFunction = DibHandle (*)(WindowHandle, std::int32_t, std::int32_t, std::int64_t);

/// `inside` seen through the blurred shape at `percent`, `outside` around it.
OwnedDib IrisFrame(const EffectRun& run, MaskFunction shape, std::int64_t percent, std::uint32_t radius,
                   const DibHeader* inside, const DibHeader* outside) {
    const OwnedDib mask(shape(run.Window(), run.Width(), run.Height(), percent));
    if (!mask) return {};
    const OwnedDib soft(DibGaussianBlur(mask.Get(), static_cast<std::int32_t>(radius), kSigma));
    const LockedDib locked(soft.Get());
    return locked ? OwnedDib(DibMaskBlend(inside, outside, locked.Get())) : OwnedDib();
}

int OpenIris(TransitionContext& context, MaskFunction shape, std::int64_t step, std::int64_t limit) {
    EffectRun run(context);
    if (!run || step == 0) return kEffectFailed;
    for (std::int64_t p = step; p < limit; p += step) {
        if (!run.Emit(
                IrisFrame(run, shape, p, pluginSettings.TransitionIrisRadius, run.Target(), run.Source()))) {
            return kEffectFailed;
        }
    }
    return kEffectDone;
}

// The ellipse opens to 100 % and beyond, the diamond stops short of it: wanted.
std::int64_t EllipseLimit(std::int64_t step) { return step + 100; }
constexpr std::int64_t kDiamondLimit = 100;

} // namespace

int SoftIrisEllipse(TransitionContext& context) {
    const std::int64_t step = pluginSettings.TransitionIrisStep;
    return OpenIris(context, EllipseMask, step, EllipseLimit(step));
}
std::int64_t SoftIrisEllipseFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionIrisStep;
    return step == 0 ? 0 : 1 + LoopCount(step, EllipseLimit(step), step);
}

int SoftIrisDiamond(TransitionContext& context) {
    return OpenIris(context, DiamondMask, pluginSettings.TransitionIrisStep, kDiamondLimit);
}
std::int64_t SoftIrisDiamondFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionIrisStep;
    return step == 0 ? 0 : 1 + LoopCount(step, kDiamondLimit, step);
}

int SilentMovie(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionSilentMovieStep;
    if (!run || step == 0) return kEffectFailed;
    const std::uint32_t radius = pluginSettings.TransitionSilentMovieRadius;
    const OwnedDib flat(
        DibCreateFlat(run.Width(), run.Height(), pluginSettings.TransitionSilentMovieBackground));
    const LockedDib background(flat.Get());
    if (!background) return kEffectFailed;

    for (std::int64_t p = 100; p > step; p -= step) {
        if (!run.Emit(IrisFrame(run, EllipseMask, p, radius, run.Source(), background.Get())))
            return kEffectFailed;
    }
    if (!run.Emit(OwnedDib(GlobalDuplicate(flat.Get())))) return kEffectFailed;
    for (std::int64_t p = step; p < EllipseLimit(step); p += step) {
        if (!run.Emit(IrisFrame(run, EllipseMask, p, radius, run.Target(), background.Get())))
            return kEffectFailed;
    }
    return kEffectDone;
}
std::int64_t SilentMovieFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionSilentMovieStep;
    if (step == 0) return 0;
    return 1 + LoopCount(step, 100, step) + 1 + LoopCount(step, EllipseLimit(step), step);
}

} // namespace lumafold
