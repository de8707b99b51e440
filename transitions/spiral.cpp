// Spiral out: the source turns and shrinks away over the target. Spiral in: the target turns and grows over
// the source. Clockwise both; a frame is one step of the turn, and the whole way is one full turn.
#include <cmath>

#include "image/resample.h"
#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

constexpr double kPi = 3.14159265358979323846;

/// The entries of the list, all of them parts of a full turn.
constexpr std::int32_t kStepDegrees[] = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 20, 24, 30, 40, 45, 60};

/// How many steps make a full turn; 0 for an entry that is not there.
std::int32_t StepsOfTurn() {
    const std::uint32_t entry = pluginSettings.TransitionSpiralStep;
    return entry < std::size(kStepDegrees) ? 360 / kStepDegrees[entry] : 0;
}

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
            cosine = PortableCos(degrees * (kPi / 180));
            sine = PortableSin(degrees * (kPi / 180));
        }
    }
    SamplePoint At(double x, double y) const {
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

/// The turning picture at its own size and halved again and again, so that it does not flicker when it is
/// small.
class Pyramid {
public:
    /// Levels down to the one that `smallest`, the smallest scale, asks for.
    Pyramid(DibHandle picture, double smallest) {
        OwnedDib halved;
        bool good = Append(picture);
        while (good && count_ < kMostLevels && Halves(count_ - 1, smallest)) {
            halved = OwnedDib(DibScale(count_ == 1 ? picture : halved.Get(), 50, 50));
            good = Append(halved.Get());
        }
        if (!good) count_ = 0;
    }
    explicit operator bool() const { return count_ > 0; }

    /// How often the picture is halved for a scale.
    std::int32_t LevelFor(double scale) const {
        std::int32_t level = 0;
        while (level + 1 < count_ && Halves(level, scale)) {
            ++level;
        }
        return level;
    }
    const SamplePlane& Level(std::int32_t level) const { return levels_[static_cast<std::size_t>(level)]; }

private:
    static constexpr std::int32_t kMostLevels = 16; // no list entry asks for more than nine

    bool Halves(std::int32_t level, double scale) const {
        const SamplePlane& plane = Level(level);
        return scale * (2 << level) <= 1 && plane.Width() >= 2 && plane.Height() >= 2;
    }
    bool Append(DibHandle picture) {
        const LockedDib locked(picture);
        if (!locked) return false;
        SamplePlane plane(locked->biWidth, locked->biHeight);
        if (!plane || !plane.Load(locked.Get(), SamplePlane::Border::Nearest)) return false;
        levels_[static_cast<std::size_t>(count_++)] = std::move(plane);
        return true;
    }

    std::array<SamplePlane, kMostLevels> levels_;
    std::int32_t count_ = 0;
};

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
    SamplePoint At(std::int32_t column) const { return spin_.At(column + 0.5 - halfWidth_, y_); }

private:
    Spin spin_;
    double halfWidth_, halfHeight_, y_;
    Columns columns_{};
};

/// The smooth spiral: a layer of the turning picture, laid over the other one through a mask with soft edges.
class SmoothSpiral {
public:
    SmoothSpiral(DibHandle turning, const DibHeader* ground, double smallest)
        : pyramid_(turning, smallest), ground_(ground), width_(ground->biWidth), height_(ground->biHeight) {}
    explicit operator bool() const { return static_cast<bool>(pyramid_); }

    OwnedDib Frame(const Spin& spin) const {
        const OwnedDib layer(DibCreate(width_, height_, nullptr, 24)),
            mask(DibCreate(width_, height_, nullptr, 24));
        const LockedDib layerLock(layer.Get()), maskLock(mask.Get());
        if (!layerLock || !maskLock) return {};
        const RowView layerRows(layerLock.Get()), maskRows(maskLock.Get());
        for (std::int32_t y = 0; y < height_; ++y) {
            RenderRow(spin, y, layerRows.Row(y), maskRows.Row(y));
        }
        return OwnedDib(DibMaskBlend(layerLock.Get(), ground_, maskLock.Get()));
    }

private:
    void RenderRow(const Spin& spin, std::int32_t y, std::uint8_t* colours, std::uint8_t* masks) const {
        const std::int32_t level = pyramid_.LevelFor(spin.scale);
        const SamplePlane& plane = pyramid_.Level(level);
        const WarpSampler sampler(plane, 0);
        const double halfWidth = width_ / 2.0, halfHeight = height_ / 2.0, shrink = 1.0 / (1 << level);
        const double right = plane.Width(), bottom = plane.Height();
        const SpinRow row(spin, width_, height_, y);
        const auto [from, to] = row.Reached();
        for (std::int32_t x = from; x < to; ++x) {
            const auto [u, v] = row.At(x);
            // A soft edge, one pixel of the frame wide.
            const double share = std::clamp((halfWidth - std::abs(u)) * spin.scale + 0.5, 0.0, 1.0) *
                                 std::clamp((halfHeight - std::abs(v)) * spin.scale + 0.5, 0.0, 1.0);
            const double rounded = 255 * share + 0.5;
            std::memset(masks + std::ptrdiff_t{3} * x, static_cast<int>(rounded), 3);
            // Held to the picture, which clamps the colours too.
            const StillPoint path{{std::clamp((u + halfWidth) * shrink, 0.0, right),
                                   std::clamp((v + halfHeight) * shrink, 0.0, bottom)}};
            sampler.Write(path, 1, colours + std::ptrdiff_t{3} * x);
        }
    }

    Pyramid pyramid_;
    const DibHeader* ground_;
    std::int32_t width_, height_;
};

/// The quick spiral: the nearest pixel of the turning picture, or the ground.
OwnedDib QuickFrame(const EffectRun& run, const DibHeader* turning, DibHandle ground, const Spin& spin) {
    OwnedDib frame(GlobalDuplicate(ground));
    const LockedDib locked(frame.Get());
    const std::int32_t width = run.Width(), height = run.Height();
    if (!locked || !Covers24(turning, width, height) || !Covers24(locked.Get(), width, height)) return {};
    const ConstRowView turningRows(turning);
    const RowView rows(locked.Get());
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

enum class Direction { In, Out };

Spin SpinAt(Direction direction, std::int32_t k, std::int32_t steps) {
    const double way = static_cast<double>(k) / steps;
    return {k * (360 / steps), direction == Direction::In ? way : 1 - way};
}

int RunSmooth(EffectRun& run, DibHandle turning, const DibHeader* ground, Direction direction,
              std::int32_t steps) {
    const SmoothSpiral spiral(turning, ground, 1.0 / steps);
    if (!spiral) return kEffectFailed;
    for (std::int32_t k = 1; k < steps; ++k) {
        if (!run.Emit(spiral.Frame(SpinAt(direction, k, steps)))) return kEffectFailed;
    }
    return kEffectDone;
}

int RunQuick(EffectRun& run, const DibHeader* turning, DibHandle ground, Direction direction,
             std::int32_t steps) {
    for (std::int32_t k = 1; k < steps; ++k) {
        if (!run.Emit(QuickFrame(run, turning, ground, SpinAt(direction, k, steps)))) return kEffectFailed;
    }
    return kEffectDone;
}

int Spiral(TransitionContext& context, Direction direction) {
    EffectRun run(context);
    const std::int32_t steps = StepsOfTurn();
    if (!run || steps == 0) return kEffectFailed;
    const bool out = direction == Direction::Out;
    if (pluginSettings.TransitionSpiralShear != 0) {
        return RunSmooth(run, out ? context.image : context.nextImage, out ? run.Target() : run.Source(),
                         direction, steps);
    }
    return RunQuick(run, out ? run.Source() : run.Target(), out ? context.nextImage : context.image,
                    direction, steps);
}

} // namespace

int SpiralIn(TransitionContext& context) { return Spiral(context, Direction::In); }
std::int64_t SpiralInFrames(CanvasSize) { return StepsOfTurn(); }

int SpiralOut(TransitionContext& context) { return Spiral(context, Direction::Out); }
std::int64_t SpiralOutFrames(CanvasSize) { return StepsOfTurn(); }

} // namespace lumafold
