// None: a hard cut. The still frame alone, copied pixel by pixel into a picture of its own.
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {

std::int64_t NoneFrames(CanvasSize) { return 1; }

int None(TransitionContext& context) {
    const LockedDib source(context.image);
    if (!source) return kEffectFailed;
    Palette palette;
    DibGetPalette(source.Get(), palette);
    OwnedDib copy(DibCreate(source->biWidth, source->biHeight, &palette, source->biBitCount));
    {
        const LockedDib target(copy.Get());
        if (!target) return kEffectFailed;
        DibCopyRect(target.Get(), 0, 0, source.Get(), 0, 0, source->biWidth, source->biHeight);
    }
    return FrameListAddImage(*context.frames, std::move(copy), context.pause) ? kEffectDone : kEffectFailed;
}

} // namespace lumafold
