// Spiral out: the source turns and shrinks away over the target. Spiral in: the target turns and grows over
// the source. Clockwise both; a frame is one step of the turn, and the whole way is one full turn.
#include <cmath>
#include <numbers>

#include "image/resample.h"
#include "numbers/portable_math.h"
#include "transitions/run.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

constexpr std::int32_t kFullTurn = 360;

/// A picture at its own size and halved again and again, so that it does not flicker when it turns small.
class Pyramid {
public:
    /// Levels down to the one that `smallest`, the smallest scale, asks for. Check it before use.
    Pyramid(const DibHeader& picture, double smallest) {
        OwnedDib halved;
        bool good = Append(picture);
        while (good && count_ < levels_.size() && Halves(count_ - 1, smallest)) {
            halved = DibScale(count_ == 1 ? picture : *halved, 50, 50);
            good = halved && Append(*halved);
        }
        if (!good) count_ = 0;
    }
    explicit operator bool() const { return count_ > 0; }

    /// How often the picture is halved for a scale.
    std::size_t LevelFor(double scale) const {
        std::size_t level = 0;
        while (level + 1 < count_ && Halves(level, scale))
            ++level;
        return level;
    }
    const SamplePlane& Level(std::size_t level) const { return levels_[level]; }

private:
    bool Halves(std::size_t level, double scale) const {
        const SamplePlane& plane = Level(level);
        return scale * (2 << level) <= 1 && plane.Width() >= 2 && plane.Height() >= 2;
    }
    bool Append(const DibHeader& picture) {
        levels_[count_] = SamplePlane(picture, SamplePlane::Border::Nearest);
        return static_cast<bool>(levels_[count_++]);
    }

    std::array<SamplePlane, 16> levels_; // no step asks for more than nine
    std::size_t count_ = 0;
};

/// A span of columns, `to` not included.
struct Columns {
    std::int32_t from, to;
};
struct PicturePoint {
    double u, v;
};

/// From a point of the frame to the point of the turning picture that it shows, both about the middle.
struct Spin {
    double scale, cosine, sine, halfWidth, halfHeight;

    Spin(std::int32_t degrees, double size, CanvasSize canvas)
        : scale(size), halfWidth(canvas.width / 2.0), halfHeight(canvas.height / 2.0) {
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
    PicturePoint At(std::int32_t column, std::int32_t row) const {
        const double x = column + 0.5 - halfWidth, y = row + 0.5 - halfHeight;
        return {(cosine * x + sine * y) / scale, (cosine * y - sine * x) / scale};
    }

    /// The columns of a row in which the turning picture, with half a pixel of edge, can be.
    Columns Reached(std::int32_t row) const {
        const double y = row + 0.5 - halfHeight, edge = 0.5 / scale;
        const Columns all{0, static_cast<std::int32_t>(2 * halfWidth)};
        const Columns across = Within(all, cosine / scale, sine * y / scale, halfWidth + edge);
        return Within(across, -sine / scale, cosine * y / scale, halfHeight + edge);
    }

private:
    /// Those that have |x * slope + base| <= reach, x about the middle, give or take a pixel.
    Columns Within(Columns columns, double slope, double base, double reach) const {
        if (slope == 0) return base > reach || base < -reach ? Columns{0, 0} : columns;
        const double a = (-reach - base) / slope, b = (reach - base) / slope;
        const auto column = [&](double x) {
            const double least = columns.from, most = columns.to;
            return static_cast<std::int32_t>(std::clamp(x + halfWidth, least, most));
        };
        return {std::max(column(std::min(a, b)) - 1, columns.from),
                std::min(column(std::max(a, b)) + 2, columns.to)};
    }
};

/// One row of the turning picture, and of the mask that it is laid over the ground with.
void RenderSmoothRow(const Pyramid& pyramid, const Spin& spin, std::int32_t y, std::uint8_t* colours,
                     std::uint8_t* mask) {
    const std::size_t level = pyramid.LevelFor(spin.scale);
    const SamplePlane& plane = pyramid.Level(level);
    const WarpSampler sampler(plane, 0);
    const double shrink = 1.0 / (1 << level), right = plane.Width(), bottom = plane.Height();
    const auto [from, to] = spin.Reached(y);
    for (std::int32_t x = from; x < to; ++x) {
        const auto [u, v] = spin.At(x, y);
        // A soft edge, one pixel of the frame wide.
        const double share = std::clamp((spin.halfWidth - std::abs(u)) * spin.scale + 0.5, 0.0, 1.0) *
                             std::clamp((spin.halfHeight - std::abs(v)) * spin.scale + 0.5, 0.0, 1.0);
        const double rounded = 255 * share + 0.5;
        mask[x] = static_cast<std::uint8_t>(rounded);
    }
    const auto walk = [&](std::int32_t first, std::int32_t pixels, SamplePoints& points, auto take) {
        for (std::int32_t i = 0; i < pixels; ++i) {
            const auto [u, v] = spin.At(first + i, y);
            // Held to the picture, which clamps the colours too.
            points.u[i] = std::clamp((u + spin.halfWidth) * shrink, 0.0, right);
            points.v[i] = std::clamp((v + spin.halfHeight) * shrink, 0.0, bottom);
        }
        take();
    };
    sampler.WriteRow(from, to, 1, walk, colours);
}

/// A layer of the turning picture, laid over the ground through a mask with soft edges.
OwnedDib SmoothFrame(const Pyramid& pyramid, const DibHeader& ground, const Spin& spin) {
    OwnedDib layer = DibCreate(ground.biWidth, ground.biHeight, nullptr, 24);
    Mask mask(ground.biWidth, ground.biHeight);
    if (!layer || !mask) return {};
    const RowView rows = layer.Rows();
    for (std::int32_t y = 0; y < rows.Height(); ++y)
        RenderSmoothRow(pyramid, spin, y, rows.Row(y), mask.Row(y));
    return MaskBlend(*layer, ground, mask);
}

/// The nearest pixel of the turning picture, or the ground.
OwnedDib QuickFrame(const SamplePlane& turning, const DibHeader& ground, const Spin& spin) {
    OwnedDib frame = DibCopy(ground);
    if (!frame) return frame;
    const RowView rows = frame.Rows();
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        const auto [from, to] = spin.Reached(y);
        for (std::int32_t x = from; x < to; ++x) {
            const auto [u, v] = spin.At(x, y);
            const double column = u + spin.halfWidth, line = v + spin.halfHeight;
            if (!(column >= 0 && column < rows.Width() && line >= 0 && line < rows.Height())) continue;
            std::memcpy(rows.Row(y) + std::ptrdiff_t{3} * x,
                        turning.At(static_cast<std::int32_t>(column), static_cast<std::int32_t>(line)), 3);
        }
    }
    return frame;
}

enum class SpiralWay { In, Out };

struct Spiral {
    std::int32_t steps; ///< of the full turn
    bool smooth;        ///< or else the nearest pixels are shown
    SpiralWay way;

    static std::optional<Spiral> Plan(const PluginSettings& settings, CanvasSize, SpiralWay way) {
        // The entries of the list, in degrees, all of them parts of a full turn.
        constexpr std::int32_t kSteps[] = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 20, 24, 30, 40, 45, 60};
        const std::uint32_t entry = settings.TransitionSpiralStep;
        if (entry >= std::size(kSteps)) return {};
        return Spiral{kFullTurn / kSteps[entry], settings.TransitionSpiralShear != 0, way};
    }
    static RenderNeed Need(const PluginSettings&, SpiralWay) { return {6, 3}; }
    std::int64_t Frames() const { return steps - 1; }

    /// The turning picture; only smooth turning looks at halved ones.
    Pyramid Start(const Gap& gap) const {
        return {way == SpiralWay::Out ? gap.source : gap.target, smooth ? 1.0 / steps : 1.0};
    }
    OwnedDib Frame(const Gap& gap, const Pyramid& turning, std::int64_t index) const {
        const auto k = static_cast<std::int32_t>(index + 1);
        const double done = static_cast<double>(k) / steps;
        const Spin spin(k * (kFullTurn / steps), way == SpiralWay::In ? done : 1 - done, gap.size);
        const DibHeader& ground = way == SpiralWay::Out ? gap.target : gap.source;
        return smooth ? SmoothFrame(turning, ground, spin) : QuickFrame(turning.Level(0), ground, spin);
    }
};

} // namespace

constinit const Effect kSpiralIn = EffectOf<Spiral, SpiralWay::In>();
constinit const Effect kSpiralOut = EffectOf<Spiral, SpiralWay::Out>();

} // namespace lumafold
