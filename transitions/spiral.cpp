#include "transitions/spiral.h"

#include <cmath>
#include <numbers>

#include "image/resample.h"
#include "numbers/portable_math.h"
#include "transitions/compositing.h"

namespace lumafold {
namespace {

/// The entries of the list, all of them parts of a full turn.
constexpr std::int32_t kStepDegrees[] = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 20, 24, 30, 40, 45, 60};
constexpr std::int32_t kFullTurn = 360;

struct PicturePoint {
    double u, v;
};

/// From a point of the frame to the point of the turning picture that it shows, both about the middle.
struct Spin {
    double scale, cosine, sine;

    Spin(std::int32_t degrees, double size) : scale(size) {
        // Quarter turns are exact, so that edges stay straight.
        constexpr double kQuarterCosines[] = {1, 0, -1, 0};
        if (degrees % 90 == 0) {
            const int quarter = degrees / 90;
            cosine = kQuarterCosines[quarter % 4];
            sine = kQuarterCosines[(quarter + 3) % 4];
        } else {
            cosine = PortableCos(degrees * (std::numbers::pi / 180));
            sine = PortableSin(degrees * (std::numbers::pi / 180));
        }
    }
    PicturePoint At(double x, double y) const {
        return {(cosine * x + sine * y) / scale, (cosine * y - sine * x) / scale};
    }
};

/// A span of columns, `to` not included.
struct Columns {
    std::int32_t from, to;
};

/// The columns of a row whose points have |x offset * slope + base| <= reach, give or take a pixel.
Columns Within(Columns columns, double slope, double base, double reach, double halfWidth) {
    if (slope == 0) return base > reach || base < -reach ? Columns{0, 0} : columns;
    const double a = (-reach - base) / slope, b = (reach - base) / slope;
    const auto column = [=](double x) {
        return static_cast<std::int32_t>(
            std::clamp(x + halfWidth, static_cast<double>(columns.from), static_cast<double>(columns.to)));
    };
    return {std::max(column(std::min(a, b)) - 1, columns.from),
            std::min(column(std::max(a, b)) + 2, columns.to)};
}

/// What one row of a frame shows of the turning picture.
class SpinRow {
public:
    SpinRow(const Spin& spin, std::int32_t width, std::int32_t height, std::int32_t row)
        : spin_(spin), halfWidth_(width / 2.0), halfHeight_(height / 2.0), y_(row + 0.5 - halfHeight_) {
        const double edge = 0.5 / spin.scale;
        columns_ = Within({0, width}, spin.cosine / spin.scale, spin.sine * y_ / spin.scale,
                          halfWidth_ + edge, halfWidth_);
        columns_ = Within(columns_, -spin.sine / spin.scale, spin.cosine * y_ / spin.scale,
                          halfHeight_ + edge, halfWidth_);
    }

    /// Where the turning picture can be.
    Columns Reached() const { return columns_; }
    /// About the middle.
    PicturePoint At(std::int32_t column) const { return spin_.At(column + 0.5 - halfWidth_, y_); }

private:
    Spin spin_;
    double halfWidth_, halfHeight_, y_;
    Columns columns_{};
};

/// One row of the turning picture, and of the mask that it is laid over the ground with.
void RenderSmoothRow(const Pyramid& pyramid, const Spin& spin, CanvasSize size, std::int32_t y,
                     std::uint8_t* colours, std::uint8_t* mask) {
    const std::int32_t level = pyramid.LevelFor(spin.scale);
    const SamplePlane& plane = pyramid.Level(level);
    const WarpSampler sampler(plane, 0);
    const double halfWidth = size.width / 2.0, halfHeight = size.height / 2.0, shrink = 1.0 / (1 << level);
    const double right = plane.Width(), bottom = plane.Height();
    const SpinRow row(spin, size.width, size.height, y);
    const auto [from, to] = row.Reached();
    for (std::int32_t x = from; x < to; ++x) {
        const auto [u, v] = row.At(x);
        // A soft edge, one pixel of the frame wide.
        const double share = std::clamp((halfWidth - std::abs(u)) * spin.scale + 0.5, 0.0, 1.0) *
                             std::clamp((halfHeight - std::abs(v)) * spin.scale + 0.5, 0.0, 1.0);
        const double rounded = 255 * share + 0.5;
        mask[x] = static_cast<std::uint8_t>(rounded);
    }
    const auto walk = [&](std::int32_t first, std::int32_t pixels, SamplePoints& points, auto take) {
        for (std::int32_t i = 0; i < pixels; ++i) {
            const auto [u, v] = row.At(first + i);
            // Held to the picture, which clamps the colours too.
            points.u[i] = std::clamp((u + halfWidth) * shrink, 0.0, right);
            points.v[i] = std::clamp((v + halfHeight) * shrink, 0.0, bottom);
        }
        take();
    };
    sampler.WriteRow(from, to, 1, walk, colours);
}

/// A layer of the turning picture, laid over the ground through a mask with soft edges.
OwnedDib SmoothFrame(const Pyramid& pyramid, const DibHeader& ground, const Spin& spin) {
    const CanvasSize size{ground.biWidth, ground.biHeight};
    OwnedDib layer = DibCreate(size.width, size.height, nullptr, 24);
    Mask mask(size.width, size.height);
    if (!layer || !mask) return {};
    const RowView layerRows = layer.Rows();
    for (std::int32_t y = 0; y < size.height; ++y)
        RenderSmoothRow(pyramid, spin, size, y, layerRows.Row(y), mask.Row(y));
    return MaskBlend(*layer, ground, mask);
}

/// The nearest pixel of the turning picture, or the ground.
OwnedDib QuickFrame(const DibHeader& turning, const DibHeader& ground, const Spin& spin) {
    OwnedDib frame = DibCopy(ground);
    if (!frame) return frame;
    const std::int32_t width = ground.biWidth, height = ground.biHeight;
    const ConstRowView turningRows(turning);
    const RowView rows = frame.Rows();
    for (std::int32_t y = 0; y < height; ++y) {
        const SpinRow row(spin, width, height, y);
        const auto [from, to] = row.Reached();
        for (std::int32_t x = from; x < to; ++x) {
            const auto [u, v] = row.At(x);
            const double column = u + width / 2.0, line = v + height / 2.0;
            if (!(column >= 0 && column < width && line >= 0 && line < height)) continue;
            std::memcpy(rows.Row(y) + std::ptrdiff_t{3} * x,
                        turningRows.Row(static_cast<std::int32_t>(line)) +
                            std::ptrdiff_t{3} * static_cast<std::int32_t>(column),
                        3);
        }
    }
    return frame;
}

} // namespace

Pyramid::Pyramid(const DibHeader& picture, double smallest) {
    OwnedDib halved;
    bool good = Append(picture);
    while (good && count_ < kMostLevels && Halves(count_ - 1, smallest)) {
        halved = DibScale(count_ == 1 ? picture : *halved, 50, 50);
        good = halved && Append(*halved);
    }
    if (!good) count_ = 0;
}

std::int32_t Pyramid::LevelFor(double scale) const {
    std::int32_t level = 0;
    while (level + 1 < count_ && Halves(level, scale))
        ++level;
    return level;
}

bool Pyramid::Halves(std::int32_t level, double scale) const {
    const SamplePlane& plane = Level(level);
    return scale * (2 << level) <= 1 && plane.Width() >= 2 && plane.Height() >= 2;
}

bool Pyramid::Append(const DibHeader& picture) {
    SamplePlane plane(picture, SamplePlane::Border::Nearest);
    if (!plane) return false;
    levels_[static_cast<std::size_t>(count_++)] = std::move(plane);
    return true;
}

template <SpiralWay Way>
SpiralPainter<Way>::SpiralPainter(const Gap& gap, std::int32_t steps)
    : turning_(Way == SpiralWay::Out ? gap.source : gap.target),
      ground_(Way == SpiralWay::Out ? gap.target : gap.source), steps_(steps) {
    if (gap.settings.TransitionSpiralShear != 0) smooth_.emplace(turning_, 1.0 / steps);
}

template <SpiralWay Way>
OwnedDib SpiralPainter<Way>::Frame(std::int64_t index) const {
    const auto k = static_cast<std::int32_t>(index + 1);
    const double done = static_cast<double>(k) / steps_;
    const Spin spin(k * (kFullTurn / steps_), Way == SpiralWay::In ? done : 1 - done);
    return smooth_ ? SmoothFrame(*smooth_, ground_, spin) : QuickFrame(turning_, ground_, spin);
}

template <SpiralWay Way>
std::optional<Spiral<Way>> Spiral<Way>::Plan(const PluginSettings& settings, CanvasSize) {
    const std::uint32_t entry = settings.TransitionSpiralStep;
    if (entry >= std::size(kStepDegrees)) return {};
    return Spiral(kFullTurn / kStepDegrees[entry]);
}

template class SpiralPainter<SpiralWay::In>;
template class SpiralPainter<SpiralWay::Out>;
template class Spiral<SpiralWay::In>;
template class Spiral<SpiralWay::Out>;

} // namespace lumafold
