// Quad: the target's four quarters grow, each from the middle of its own place, over the source; or the
// source's shrink there and uncover the target.
#include "image/resample.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

/// Lays one quarter of `picture`, scaled, into the middle of its place. Every place is half the frame,
/// truncated, so that the larger quarters of odd sizes are centred in a place one pixel too small
/// (docs/quirks.md 43).
bool LayQuarter(DibHeader& frame, const DibHeader& picture, const Rect& quarter, std::int32_t percent) {
    const OwnedDib piece = DibCropRect(picture, quarter, 0);
    if (!piece) return false;
    const OwnedDib scaled = DibScale(*piece, percent, percent);
    if (!scaled) return false;
    const std::int32_t x = (frame.biWidth / 2 - scaled->biWidth) / 2 + quarter.left;
    const std::int32_t y = (frame.biHeight / 2 - scaled->biHeight) / 2 + quarter.top;
    DibCopyRect(frame, x, y, *scaled, 0, 0, scaled->biWidth, scaled->biHeight);
    return true;
}

OwnedDib QuadFrame(const DibHeader& background, const DibHeader& picture, std::int32_t percent) {
    OwnedDib frame = DibCopy(background);
    if (!frame) return frame;
    const std::int32_t width = picture.biWidth, height = picture.biHeight;
    const std::int32_t halfWidth = width / 2, halfHeight = height / 2;
    const Rect quarters[] = {{0, 0, halfWidth, halfHeight},
                             {halfWidth, 0, width, halfHeight},
                             {0, halfHeight, halfWidth, height},
                             {halfWidth, halfHeight, width, height}};
    for (const Rect& quarter : quarters) {
        if (!LayQuarter(*frame, picture, quarter, percent)) return {};
    }
    return frame;
}

enum class QuadDirection { Expand, Contract };

struct Quad {
    std::int64_t step; ///< percent a frame
    QuadDirection direction;

    static std::optional<Quad> Plan(const PluginSettings& settings, CanvasSize, QuadDirection direction) {
        if (settings.TransitionQuadStepSize == 0) return {};
        return Quad{settings.TransitionQuadStepSize, direction};
    }
    /// The last frame is a step short of 100, so that a step of 50 shows nothing between (docs/quirks.md 44).
    std::int64_t Frames() const { return FramesBelow(100 - step, step); }

    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        const auto percent = static_cast<std::int32_t>((index + 1) * step);
        return direction == QuadDirection::Expand ? QuadFrame(gap.source, gap.target, percent)
                                                  : QuadFrame(gap.target, gap.source, 100 - percent);
    }
};

} // namespace

constinit const Effect kQuadExpand = EffectOf<Quad, QuadDirection::Expand>();
constinit const Effect kQuadContract = EffectOf<Quad, QuadDirection::Contract>();

} // namespace lumafold
