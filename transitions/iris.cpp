#include "transitions/iris.h"

#include "transitions/compositing.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

constexpr std::int32_t kSigma = 100; // tenths of a pixel

/// `inside` seen through the blurred mask, `outside` around it. No mask gives no frame.
OwnedDib SoftFrame(const Mask& mask, std::uint32_t radius, const DibHeader& inside,
                   const DibHeader& outside) {
    if (!mask) return {};
    const Mask soft = MaskGaussianBlur(mask, static_cast<std::int32_t>(radius), kSigma);
    return soft ? MaskBlend(inside, outside, soft) : OwnedDib();
}

/// Frames of a shape that opens in steps; the ellipse opens to 100 % and beyond, the diamond stops short of
/// it (docs/quirks.md 13).
std::int64_t OpeningFrames(IrisShape shape, std::int64_t step) {
    return LoopCount(step, shape == IrisShape::Ellipse ? step + 100 : 100, step);
}

} // namespace

template <IrisShape kShape>
std::optional<SoftIris<kShape>> SoftIris<kShape>::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionIrisStep == 0) return {};
    return SoftIris(settings.TransitionIrisStep);
}

template <IrisShape kShape>
std::int64_t SoftIris<kShape>::Frames() const {
    return OpeningFrames(kShape, step_);
}

template <IrisShape kShape>
OwnedDib SoftIris<kShape>::Frame(const Gap& gap, std::int64_t index) const {
    constexpr auto kMask = kShape == IrisShape::Ellipse ? EllipseMask : DiamondMask;
    return SoftFrame(kMask(gap.window, gap.size.width, gap.size.height, (index + 1) * step_),
                     gap.settings.TransitionIrisRadius, gap.target, gap.source);
}

template class SoftIris<IrisShape::Ellipse>;
template class SoftIris<IrisShape::Diamond>;

std::optional<SilentMovie> SilentMovie::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionSilentMovieStep == 0) return {};
    return SilentMovie(settings.TransitionSilentMovieStep);
}

std::int64_t SilentMovie::ClosingFrames() const { return LoopCount(step_, 100, step_); }

std::int64_t SilentMovie::Frames() const {
    return ClosingFrames() + 1 + OpeningFrames(IrisShape::Ellipse, step_);
}

SilentMovie::Painter::Painter(const SilentMovie& plan, const Gap& gap)
    : plan_(plan), gap_(gap), background_(DibCreateFlat(gap.size.width, gap.size.height,
                                                        gap.settings.TransitionSilentMovieBackground)) {}

OwnedDib SilentMovie::Painter::IrisFrame(std::int64_t percent, const DibHeader& inside) const {
    return SoftFrame(EllipseMask(gap_.window, gap_.size.width, gap_.size.height, percent),
                     gap_.settings.TransitionSilentMovieRadius, inside, *background_);
}

/// The iris closes from 100 % in steps; the background stands alone for a frame; the iris opens.
OwnedDib SilentMovie::Painter::Frame(std::int64_t index) const {
    const std::int64_t closing = plan_.ClosingFrames();
    if (index < closing) return IrisFrame(100 - index * plan_.step_, gap_.source);
    if (index == closing) return DibCopy(*background_);
    return IrisFrame((index - closing) * plan_.step_, gap_.target);
}

} // namespace lumafold
