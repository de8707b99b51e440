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
Mask GlowingDot(std::uint8_t level) {
    Mask dot(kGlowSize, kGlowSize);
    if (!dot) return dot;
    for (std::int32_t dy = -kGlowReach; dy <= kGlowReach; ++dy) {
        const std::int32_t reach = kGlowReach - std::abs(dy);
        std::fill_n(dot.Row(kGlowSize / 2 + dy) + kGlowSize / 2 - reach, 2 * reach + 1, level);
    }
    return MaskGaussianBlur(dot, kGlowRadius, kGlowSigma);
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

} // namespace

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
