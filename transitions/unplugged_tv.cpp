// Unplugged TV: the source collapses into a line and the line into a dot, with the target behind it; then, if
// wanted, the dot glows up once more and fades.
#include "image/resample.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"

#include <cstdlib>

namespace lumafold {
namespace {

constexpr std::int32_t kThinnest = 2; // percent
constexpr std::int32_t kGlowSize = 32;
constexpr std::int32_t kGlowReach = 2;                    // of the diamond, before it is softened
constexpr std::int32_t kGlowRadius = 32, kGlowSigma = 10; // tenths of a pixel

OwnedDib CopyOf(const DibHeader* picture) {
    OwnedDib copy(DibCreate(picture->biWidth, picture->biHeight, nullptr, 24));
    const LockedDib out(copy.Get());
    if (!out) return {};
    DibCopyRect(out.Get(), 0, 0, picture, 0, 0, picture->biWidth, picture->biHeight);
    return copy;
}

/// The picture, squashed to these percentages, in the middle of the background.
OwnedDib CollapseFrame(const DibHeader* background, DibHandle picture, std::int64_t vertical,
                       std::int64_t horizontal) {
    const auto percent = [](std::int64_t p) { return std::max(static_cast<std::int32_t>(p), kThinnest); };
    const OwnedDib scaled(DibScale(picture, percent(horizontal), percent(vertical)));
    const LockedDib piece(scaled.Get());
    OwnedDib frame = CopyOf(background);
    const LockedDib out(frame.Get());
    if (!piece || !out) return {};
    DibCopyRect(out.Get(), (out->biWidth - piece->biWidth) / 2, (out->biHeight - piece->biHeight) / 2,
                piece.Get(), 0, 0, piece->biWidth, piece->biHeight);
    return frame;
}

/// A small diamond of grey `level` on black, softened.
OwnedDib GlowingDot(unsigned level) {
    const OwnedDib sharp(DibCreate(kGlowSize, kGlowSize, nullptr, 24));
    {
        const LockedDib dot(sharp.Get());
        if (!dot) return {};
        for (std::int32_t dy = -kGlowReach; dy <= kGlowReach; ++dy) {
            const std::int32_t reach = kGlowReach - std::abs(dy);
            for (std::int32_t dx = -reach; dx <= reach; ++dx) {
                DibSetPixel(dot.Get(), kGlowSize / 2 + dx, kGlowSize / 2 + dy,
                            MakeColour(level, level, level));
            }
        }
    }
    return OwnedDib(DibGaussianBlur(sharp.Get(), kGlowRadius, kGlowSigma));
}

PixelValue Lightened(PixelValue colour, unsigned weight) {
    const auto channel = [weight](unsigned c) { return weight + c * (255 - weight) / 255; };
    return MakeColour(channel(RedOf(colour)), channel(GreenOf(colour)), channel(BlueOf(colour)));
}

/// The background with the dot glowing in its middle, `brightness` in percent.
OwnedDib GlowFrame(const DibHeader* background, std::int64_t brightness) {
    const OwnedDib dot = GlowingDot(static_cast<unsigned>(brightness * 255 / 100));
    const LockedDib glow(dot.Get());
    OwnedDib frame = CopyOf(background);
    const LockedDib out(frame.Get());
    if (!glow || !out) return {};
    const std::int32_t left = (out->biWidth - kGlowSize) / 2, top = (out->biHeight - kGlowSize) / 2;
    for (std::int32_t y = 0; y < kGlowSize; ++y) {
        for (std::int32_t x = 0; x < kGlowSize; ++x) {
            const PixelValue below = DibGetPixel(out.Get(), left + x, top + y);
            DibSetPixel(out.Get(), left + x, top + y, Lightened(below, RedOf(DibGetPixel(glow.Get(), x, y))));
        }
    }
    return frame;
}

// The dot brightens from 50 up to below 100, and fades from 100 to 30.
constexpr std::int64_t kGlowFirst = 50, kGlowFull = 100, kGlowEnd = 29;

} // namespace

int UnpluggedTV(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionUnpluggedTVStep;
    if (!run || step == 0) return kEffectFailed;
    const std::int32_t quickDelay = std::max(run.Delay() / 2, 1);

    for (std::int64_t v = 100 - step; v >= 0; v -= step) {
        if (!run.Emit(CollapseFrame(run.Target(), context.image, v, 100))) return kEffectFailed;
    }
    for (std::int64_t v = 100 - step; v >= 0; v -= step) {
        if (!run.Emit(CollapseFrame(run.Target(), context.image, 0, v), quickDelay)) return kEffectFailed;
    }
    if (pluginSettings.TransitionUnpluggedTVAfterglow == 0) return kEffectDone;
    for (std::int64_t v = kGlowFirst; v < kGlowFull; v += step) {
        if (!run.Emit(GlowFrame(run.Target(), v), quickDelay)) return kEffectFailed;
    }
    for (std::int64_t v = kGlowFull; v > kGlowEnd; v -= step) {
        if (!run.Emit(GlowFrame(run.Target(), v), quickDelay)) return kEffectFailed;
    }
    return kEffectDone;
}

std::int64_t UnpluggedTVFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionUnpluggedTVStep;
    if (step == 0) return 0;
    const std::int64_t collapse = 100 / step;
    const std::int64_t glow =
        pluginSettings.TransitionUnpluggedTVAfterglow == 0
            ? 0
            : LoopCount(kGlowFirst, kGlowFull, step) + LoopCount(0, kGlowFull - kGlowEnd, step);
    return 1 + 2 * collapse + glow;
}

} // namespace lumafold
