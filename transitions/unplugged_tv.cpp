#include "transitions/unplugged_tv.h"

#include <cstdlib>

#include "image/resample.h"
#include "transitions/compositing.h"

namespace lumafold {
namespace {

constexpr std::int64_t kThinnest = 2; // percent
constexpr std::int32_t kGlowSize = 32;
constexpr std::int32_t kGlowReach = 2;                    // of the diamond, before it is softened
constexpr std::int32_t kGlowRadius = 32, kGlowSigma = 10; // tenths of a pixel

// The dot brightens from 50 up to below 100, and fades from 100 to 30.
constexpr std::int64_t kGlowFirst = 50, kGlowFull = 100, kGlowEnd = 29;

/// A small diamond of grey `level` on black, softened.
OwnedDib GlowingDot(unsigned level) {
    OwnedDib dot = DibCreate(kGlowSize, kGlowSize, nullptr, 24);
    if (!dot) return dot;
    for (std::int32_t dy = -kGlowReach; dy <= kGlowReach; ++dy) {
        const std::int32_t reach = kGlowReach - std::abs(dy);
        for (std::int32_t dx = -reach; dx <= reach; ++dx)
            DibSetPixel(*dot, kGlowSize / 2 + dx, kGlowSize / 2 + dy, MakeColour(level, level, level));
    }
    return DibGaussianBlur(*dot, kGlowRadius, kGlowSigma);
}

PixelValue Lightened(PixelValue colour, unsigned weight) {
    const auto channel = [weight](unsigned c) { return weight + c * (255 - weight) / 255; };
    return MakeColour(channel(RedOf(colour)), channel(GreenOf(colour)), channel(BlueOf(colour)));
}

/// Lightens the middle of the picture by the dot.
void LayGlow(const DibHeader& dot, DibHeader& picture) {
    const std::int32_t left = (picture.biWidth - dot.biWidth) / 2,
                       top = (picture.biHeight - dot.biHeight) / 2;
    for (std::int32_t y = 0; y < dot.biHeight; ++y) {
        for (std::int32_t x = 0; x < dot.biWidth; ++x) {
            const PixelValue below = DibGetPixel(picture, left + x, top + y);
            DibSetPixel(picture, left + x, top + y, Lightened(below, RedOf(DibGetPixel(dot, x, y))));
        }
    }
}

} // namespace

OwnedDib UnpluggedTVFrame(const DibHeader& background, const DibHeader& picture, const TvScreen& screen) {
    const auto percent = [](std::int64_t p) { return static_cast<std::int32_t>(std::max(p, kThinnest)); };
    const OwnedDib piece = screen.glow
                               ? GlowingDot(static_cast<unsigned>(*screen.glow * 255 / 100))
                               : DibScale(picture, percent(screen.horizontal), percent(screen.vertical));
    OwnedDib frame = DibCopy(background);
    if (!piece || !frame) return {};
    if (screen.glow) {
        LayGlow(*piece, *frame);
    } else {
        DibCopyRect(*frame, (frame->biWidth - piece->biWidth) / 2, (frame->biHeight - piece->biHeight) / 2,
                    *piece, 0, 0, piece->biWidth, piece->biHeight);
    }
    return frame;
}

std::optional<UnpluggedTv> UnpluggedTv::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionUnpluggedTVStep == 0) return {};
    return UnpluggedTv(settings.TransitionUnpluggedTVStep,
                       settings.TransitionUnpluggedTVAfterglow == 0 ? Afterglow::Off : Afterglow::On);
}

std::int64_t UnpluggedTv::CollapseFrames() const { return 100 / step_; }
std::int64_t UnpluggedTv::BrighteningFrames() const { return LoopCount(kGlowFirst, kGlowFull, step_); }

std::int64_t UnpluggedTv::Frames() const {
    const std::int64_t collapses = 2 * CollapseFrames();
    if (afterglow_ == Afterglow::Off) return collapses;
    return collapses + BrighteningFrames() + LoopCount(0, kGlowFull - kGlowEnd, step_);
}

TvScreen UnpluggedTv::Screen(std::int64_t index) const {
    const std::int64_t collapse = CollapseFrames(), brightening = BrighteningFrames();
    if (index < collapse) return {100 - (index + 1) * step_, 100, {}};
    index -= collapse;
    if (index < collapse) return {0, 100 - (index + 1) * step_, {}};
    index -= collapse;
    if (index < brightening) return {0, 0, kGlowFirst + index * step_};
    return {0, 0, kGlowFull - (index - brightening) * step_};
}

OwnedDib UnpluggedTv::Frame(const Gap& gap, std::int64_t index) const {
    return UnpluggedTVFrame(gap.target, gap.source, Screen(index));
}

std::int32_t UnpluggedTv::Delay(std::int64_t index, std::int32_t delay) const {
    return index < CollapseFrames() ? delay : std::max(delay / 2, 1);
}

} // namespace lumafold
