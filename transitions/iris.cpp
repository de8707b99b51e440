// Soft iris and Silent movie: a soft-edged shape opens from the middle onto the target. Silent movie first
// closes it over the source onto a flat colour, as early films did.
#include "transitions/compositing.h"
#include "transitions/run.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

enum class IrisShape { Ellipse, Diamond };

/// The ellipse opens in steps to 100 % and beyond, the diamond stops short of it (docs/quirks.md 13).
std::int64_t OpeningFrames(IrisShape shape, std::int64_t step) {
    return FramesBelow(shape == IrisShape::Ellipse ? step + 100 : 100, step);
}

/// `inside` seen through the shape, its edge blurred, `outside` around it.
OwnedDib IrisFrame(const Gap& gap, IrisShape shape, std::int64_t percent, std::uint32_t radius,
                   const DibHeader& inside, const DibHeader& outside) {
    constexpr std::int32_t kSigma = 100; // tenths of a pixel
    const auto draw = shape == IrisShape::Ellipse ? EllipseMask : DiamondMask;
    Mask mask = draw(gap.window, gap.size.width, gap.size.height, percent);
    if (!mask) return {};
    mask = MaskGaussianBlur(std::move(mask), static_cast<std::int32_t>(radius), kSigma);
    return mask ? MaskBlend(inside, outside, mask) : OwnedDib();
}

struct SoftIris {
    std::int64_t step; ///< percent of the full shape a frame
    IrisShape shape;

    static std::optional<SoftIris> Plan(const PluginSettings& settings, CanvasSize, IrisShape shape) {
        if (settings.TransitionIrisStep == 0) return {};
        return SoftIris{settings.TransitionIrisStep, shape};
    }
    static RenderNeed Need(const PluginSettings&, IrisShape) { return {0, 3}; }
    std::int64_t Frames() const { return OpeningFrames(shape, step); }

    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        return IrisFrame(gap, shape, (index + 1) * step, gap.settings.TransitionIrisRadius, gap.target,
                         gap.source);
    }
};

struct SilentMovie {
    std::int64_t step; ///< percent of the full shape a frame

    static std::optional<SilentMovie> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionSilentMovieStep == 0) return {};
        return SilentMovie{settings.TransitionSilentMovieStep};
    }
    std::int64_t ClosingFrames() const { return FramesBelow(100, step); }
    static RenderNeed Need(const PluginSettings&) { return {3, 3}; }
    std::int64_t Frames() const { return ClosingFrames() + 1 + OpeningFrames(IrisShape::Ellipse, step); }

    /// The flat colour.
    OwnedDib Start(const Gap& gap) const {
        return DibCreateFlat(gap.size.width, gap.size.height, gap.settings.TransitionSilentMovieBackground);
    }

    /// The iris closes from 100 % in steps; the background stands alone for a frame; the iris opens.
    OwnedDib Frame(const Gap& gap, const OwnedDib& background, std::int64_t index) const {
        const std::int64_t closing = ClosingFrames();
        if (index == closing) return DibCopy(*background);
        const bool closes = index < closing;
        const std::int64_t percent = closes ? 100 - index * step : (index - closing) * step;
        return IrisFrame(gap, IrisShape::Ellipse, percent, gap.settings.TransitionSilentMovieRadius,
                         closes ? gap.source : gap.target, *background);
    }
};

} // namespace

constinit const Effect kSoftIrisEllipse = EffectOf<SoftIris, IrisShape::Ellipse>();
constinit const Effect kSoftIrisDiamond = EffectOf<SoftIris, IrisShape::Diamond>();
constinit const Effect kSilentMovie = EffectOf<SilentMovie>();

} // namespace lumafold
