#include "transitions/implode.h"

#include <numbers>

#include "numbers/portable_math.h"
#include "numbers/quick_functions.h"
#include "transitions/compositing.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

/// Where the frame's warp has its centre, and how far it reaches.
struct WarpShape {
    double pull;
    double centreX, centreY, reachX, reachY;
};

/// The frame's pull: `gravity` is the setting's.
double PullAt(ImplodeKind kind, double gravity, std::int64_t percent) {
    const auto swell = [](std::int64_t part, std::int64_t whole) {
        return PortableSin(std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole));
    };
    if (kind == ImplodeKind::QuantumSingularity) return 2 * gravity * swell(percent, 100);
    return percent < 75 ? gravity * swell(percent, 75) : gravity * swell(percent - 75, 25) / 3;
}

/// Where the settings put the centre at `percent` of the way.
WarpShape ShapeAt(ImplodeKind kind, const PluginSettings& settings, std::int64_t percent, CanvasSize size) {
    enum Track : std::uint32_t { Still, Horizontal, Vertical };
    const std::uint32_t track = settings.TransitionImplodeTrack;
    const double travel = 0.6 * static_cast<double>(percent - 50);
    const double x = settings.TransitionImplodeXPos + (track == Horizontal ? travel : 0.0);
    const double y = settings.TransitionImplodeYPos + (track == Vertical ? travel : 0.0);
    WarpShape shape{};
    shape.pull = PullAt(kind, settings.TransitionImplodeMax / 100.0, percent);
    shape.centreX = x * size.width / 100;
    shape.centreY = y * size.height / 100;
    shape.reachX = std::max(shape.centreX, size.width - shape.centreX);
    shape.reachY = std::max(shape.centreY, size.height - shape.centreY);
    return shape;
}

/// sampled distance / distance, from the square of the distance. What lies outside stays as it is.
template <ImplodeKind Kind>
inline double Stretch(double square, double pull) {
    const double rest = 1 - square;
    const double aw = pull * (rest * rest);
    const double exponent = Kind == ImplodeKind::Burp ? 0.5 * aw : -0.5 * aw / (1 + aw);
    return QuickExp(std::max(exponent * QuickLog(square), -700.0));
}

/// A row's squared distances and stretches.
template <ImplodeKind Kind>
void FillStretches(const WarpShape& shape, double y, std::int32_t width, double* squares, double* stretches) {
    const double fromCentre = (y - shape.centreY) / shape.reachY;
    for (std::int32_t x = 0; x < width; ++x) {
        const double across = (x + 0.5 - shape.centreX) / shape.reachX;
        squares[x] = across * across + fromCentre * fromCentre;
    }
    for (std::int32_t x = 0; x < width; ++x)
        stretches[x] = Stretch<Kind>(std::min(squares[x], 1.0), shape.pull);
}

void RenderRow(const SamplePlane& plane, const WarpSampler& sampler, const WarpShape& shape, std::int32_t y,
               const double* squares, const double* stretches, std::uint8_t* out) {
    const double down = y + 0.5 - shape.centreY;
    for (std::int32_t x = 0; x < plane.Width(); ++x, out += 3) {
        if (squares[x] < 1) {
            const double right = x + 0.5 - shape.centreX;
            const StillPoint path{
                {shape.centreX + right * stretches[x], shape.centreY + down * stretches[x]}};
            sampler.Write(path, 1, out);
        } else {
            std::memcpy(out, plane.At(x, y), 3);
        }
    }
}

template <ImplodeKind Kind>
OwnedDib Warped(const DibHeader& picture, const WarpShape& shape, PixelValue matte) {
    const std::int32_t width = picture.biWidth, height = picture.biHeight;
    const SamplePlane plane(picture, SamplePlane::Border::Nearest);
    Array<double> squares(static_cast<std::size_t>(width)), stretches(static_cast<std::size_t>(width));
    OwnedDib result = DibCreate(width, height, nullptr, 24);
    if (!plane || !squares || !stretches || !result) return {};
    const WarpSampler sampler(plane, matte);
    const RowView rows = result.Rows();
    for (std::int32_t y = 0; y < height; ++y) {
        FillStretches<Kind>(shape, y + 0.5, width, squares.data(), stretches.data());
        RenderRow(plane, sampler, shape, y, squares.data(), stretches.data(), rows.Row(y));
    }
    return result;
}

} // namespace

template <ImplodeKind Kind>
std::optional<Implode<Kind>> Implode<Kind>::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionImplodeStep == 0) return {};
    return Implode(settings.TransitionImplodeStep);
}

template <ImplodeKind Kind>
std::int64_t Implode<Kind>::Frames() const {
    return LoopCount(step_, 100, step_);
}

template <ImplodeKind Kind>
OwnedDib Implode<Kind>::Frame(const Gap& gap, std::int64_t index) const {
    const std::int64_t percent = (index + 1) * step_;
    const OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>(percent * 255 / 100));
    if (!mix) return {};
    return Warped<Kind>(*mix, ShapeAt(Kind, gap.settings, percent, gap.size),
                        gap.settings.TransitionMattcolour);
}

template class Implode<ImplodeKind::Burp>;
template class Implode<ImplodeKind::QuantumSingularity>;

} // namespace lumafold
