// Unplugged TV: the source collapses into a line and the line into a dot, with the target behind it; then,
// if the setting asks for it, the dot glows up once more and fades.
#include <cstdlib>

#include "image/resample.h"
#include "transitions/compositing.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

constexpr std::int64_t kThinnest = 2; // percent
constexpr std::int32_t kGlowSize = 32;
constexpr std::int32_t kGlowReach = 2;                    // of the diamond, before it is softened
constexpr std::int32_t kGlowRadius = 32, kGlowSigma = 10; // tenths of a pixel

// The dot brightens from 50 up to below 100, and fades from 100 to 30.
constexpr std::int64_t kGlowFirst = 50, kGlowFull = 100, kGlowEnd = 29;

/// A small diamond of grey `level` on black, softened.
Mask GlowingDot(std::uint8_t level) {
    Mask dot(kGlowSize, kGlowSize);
    if (!dot) return dot;
    for (std::int32_t dy = -kGlowReach; dy <= kGlowReach; ++dy) {
        const std::int32_t reach = kGlowReach - std::abs(dy);
        std::fill_n(dot.Row(kGlowSize / 2 + dy) + kGlowSize / 2 - reach, 2 * reach + 1, level);
    }
    return MaskGaussianBlur(std::move(dot), kGlowRadius, kGlowSigma);
}

PixelValue Lightened(PixelValue colour, unsigned weight) {
    const auto channel = [weight](unsigned c) { return weight + c * (255 - weight) / 255; };
    return MakeColour(channel(RedOf(colour)), channel(GreenOf(colour)), channel(BlueOf(colour)));
}

/// The background with its middle lightened by the dot.
OwnedDib GlowFrame(const DibHeader& background, std::uint8_t level) {
    const Mask dot = GlowingDot(level);
    OwnedDib frame = DibCopy(background);
    if (!dot || !frame) return {};
    const std::int32_t left = (frame->biWidth - kGlowSize) / 2, top = (frame->biHeight - kGlowSize) / 2;
    for (std::int32_t y = 0; y < kGlowSize; ++y) {
        for (std::int32_t x = 0; x < kGlowSize; ++x) {
            const PixelValue below = DibGetPixel(*frame, left + x, top + y);
            DibSetPixel(*frame, left + x, top + y, Lightened(below, dot.Row(y)[x]));
        }
    }
    return frame;
}

/// What the screen shows, all in percent.
struct TvScreen {
    std::int64_t vertical, horizontal; ///< of the picture, at least 2 are drawn
    std::optional<std::int64_t> glow;  ///< brightness of the dot that is there instead of the picture
};

/// The picture, squashed, in the middle of the background; or the background with the dot glowing in its
/// middle. Both pictures have 24 bits.
OwnedDib UnpluggedTVFrame(const DibHeader& background, const DibHeader& picture, const TvScreen& screen) {
    if (screen.glow) return GlowFrame(background, static_cast<std::uint8_t>(*screen.glow * 255 / 100));
    const auto percent = [](std::int64_t p) { return static_cast<std::int32_t>(std::max(p, kThinnest)); };
    const OwnedDib piece = DibScale(picture, percent(screen.horizontal), percent(screen.vertical));
    OwnedDib frame = DibCopy(background);
    if (!piece || !frame) return {};
    DibCopyRect(*frame, (frame->biWidth - piece->biWidth) / 2, (frame->biHeight - piece->biHeight) / 2,
                *piece, 0, 0, piece->biWidth, piece->biHeight);
    return frame;
}

struct UnpluggedTv {
    std::int64_t step; ///< percent a frame
    bool glows;        ///< once it has collapsed

    static std::optional<UnpluggedTv> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionUnpluggedTVStep == 0) return {};
        return UnpluggedTv{settings.TransitionUnpluggedTVStep, settings.TransitionUnpluggedTVAfterglow != 0};
    }
    std::int64_t CollapseFrames() const { return 100 / step; }
    std::int64_t BrighteningFrames() const { return LoopCount(kGlowFirst, kGlowFull, step); }
    std::int64_t FadingFrames() const { return LoopCount(0, kGlowFull - kGlowEnd, step); }
    static RenderNeed Need(const PluginSettings&) { return {0, 3}; }
    std::int64_t Frames() const {
        return 2 * CollapseFrames() + (glows ? BrighteningFrames() + FadingFrames() : 0);
    }

    TvScreen Screen(std::int64_t index) const {
        const std::int64_t collapse = CollapseFrames(), brightening = BrighteningFrames();
        if (index < collapse) return {100 - (index + 1) * step, 100, {}};
        index -= collapse;
        if (index < collapse) return {0, 100 - (index + 1) * step, {}};
        index -= collapse;
        if (index < brightening) return {0, 0, kGlowFirst + index * step};
        return {0, 0, kGlowFull - (index - brightening) * step};
    }
    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        return UnpluggedTVFrame(gap.target, gap.source, Screen(index));
    }
    /// All but the first collapse goes at twice the speed.
    std::int32_t Delay(std::int64_t index, std::int32_t delay) const {
        return index < CollapseFrames() ? delay : std::max(delay / 2, 1);
    }
};

} // namespace

constinit const Effect kUnpluggedTv = EffectOf<UnpluggedTv>();

} // namespace lumafold
