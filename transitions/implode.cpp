// Burp and Quantum singularity: a cross-fade warped about a centre that stands still or travels. The
// singularity draws the picture into the point and lets it go; the burp bulges, falls back, and hiccups once.
//
// In coordinates about the centre over its distance from the farther edges, a pixel at d < 1 shows what lies
// at d^e along its ray: e = 1 / (1 + a w) for the singularity, 1 + a w for the burp, w = (1 - d^2)^2, a the
// frame's pull.
#include <bit>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

constexpr double kPi = 3.14159265358979323846;

/// The natural logarithm of a normal number below 2, to about 15 digits, in plain arithmetic alone.
inline double Logarithm(double x) {
    constexpr std::uint64_t kRootHalf = 0x3FE6A09E667F3BCD, kOne = 0x3FF0000000000000;
    constexpr std::uint64_t kMantissa = 0x000FFFFFFFFFFFFF, kTwo52 = 0x4330000000000000;
    constexpr double kLn2 = 0.69314718055994531;
    const std::uint64_t shifted = std::bit_cast<std::uint64_t>(x) + (kOne - kRootHalf);
    const double exponent = std::bit_cast<double>(shifted >> 52 | kTwo52) - (0x1p52 + 1023);
    const double m = std::bit_cast<double>((shifted & kMantissa) + kRootHalf);
    // m lies about 1: ln m = 2 (u + u^3 / 3 + u^5 / 5 + ...).
    const double u = (m - 1) / (m + 1), z = u * u;
    double sum = 1.0 / 21;
    sum = sum * z + 1.0 / 19;
    sum = sum * z + 1.0 / 17;
    sum = sum * z + 1.0 / 15;
    sum = sum * z + 1.0 / 13;
    sum = sum * z + 1.0 / 11;
    sum = sum * z + 1.0 / 9;
    sum = sum * z + 1.0 / 7;
    sum = sum * z + 1.0 / 5;
    sum = sum * z + 1.0 / 3;
    return exponent * kLn2 + 2 * (u + u * (z * sum));
}

/// e^x for |x| <= 700, to about 14 digits.
inline double Exponential(double x) {
    constexpr double kRound = 0x1.8p52; // adding it leaves the nearest whole number in the low bits
    constexpr double kOneOverLn2 = 1.4426950408889634;
    constexpr double kLn2High = 0x1.62e42fefa2000p-1, kLn2Low = 0x1.9ef35793c7673p-41;
    const double shifted = x * kOneOverLn2 + kRound;
    const double count = shifted - kRound;
    const double r = ((x - count * kLn2High) - count * kLn2Low) * 0.125;
    double sum = 1.0 / 40320;
    sum = sum * r + 1.0 / 5040;
    sum = sum * r + 1.0 / 720;
    sum = sum * r + 1.0 / 120;
    sum = sum * r + 1.0 / 24;
    sum = sum * r + 1.0 / 6;
    sum = sum * r + 0.5;
    // Three squarings undo the eighth; e^r - 1 is what is squared, so that small arguments lose nothing.
    double lessOne = r + r * (r * sum);
    lessOne = lessOne * (lessOne + 2);
    lessOne = lessOne * (lessOne + 2);
    lessOne = lessOne * (lessOne + 2);
    return (lessOne + 1) * std::bit_cast<double>((std::bit_cast<std::uint64_t>(shifted) + 1023) << 52);
}

enum class Warp { Singularity, Burp };

/// Where the frame's warp has its centre, and how far it reaches.
struct WarpShape {
    Warp kind;
    double pull;
    double centreX, centreY, reachX, reachY;
};

/// sampled distance / distance, from the square of the distance. What lies outside stays as it is.
template <Warp kind>
inline double Stretch(double square, double pull) {
    const double rest = 1 - square;
    const double aw = pull * (rest * rest);
    const double exponent = kind == Warp::Burp ? 0.5 * aw : -0.5 * aw / (1 + aw);
    return Exponential(std::max(exponent * Logarithm(square), -700.0));
}

template <Warp kind>
void FillStretches(const WarpShape& shape, double y, std::int32_t width, double* squares, double* stretches) {
    const double fromCentre = (y - shape.centreY) / shape.reachY;
    for (std::int32_t x = 0; x < width; ++x) {
        const double across = (x + 0.5 - shape.centreX) / shape.reachX;
        squares[x] = across * across + fromCentre * fromCentre;
    }
    for (std::int32_t x = 0; x < width; ++x) {
        stretches[x] = Stretch<kind>(std::min(squares[x], 1.0), shape.pull);
    }
}

/// Where the settings put the centre at p percent of the way.
WarpShape ShapeAt(Warp kind, std::int64_t p, std::int32_t width, std::int32_t height) {
    enum Track : std::uint32_t { Still, Horizontal, Vertical };
    const std::uint32_t track = pluginSettings.TransitionImplodeTrack;
    const double travel = 0.6 * static_cast<double>(p - 50),
                 gravity = pluginSettings.TransitionImplodeMax / 100.0;
    const double x = pluginSettings.TransitionImplodeXPos + (track == Horizontal ? travel : 0.0);
    const double y = pluginSettings.TransitionImplodeYPos + (track == Vertical ? travel : 0.0);
    const auto swell = [](std::int64_t part, std::int64_t whole) {
        return PortableSin(kPi * static_cast<double>(part) / static_cast<double>(whole));
    };
    WarpShape shape{};
    shape.kind = kind;
    shape.pull = kind == Warp::Singularity ? 2 * gravity * swell(p, 100)
                 : p < 75                  ? gravity * swell(p, 75)
                                           : gravity * swell(p - 75, 25) / 3;
    shape.centreX = x * width / 100;
    shape.centreY = y * height / 100;
    shape.reachX = std::max(shape.centreX, width - shape.centreX);
    shape.reachY = std::max(shape.centreY, height - shape.centreY);
    return shape;
}

class Imploder {
public:
    Imploder(std::int32_t width, std::int32_t height)
        : plane_(width, height), squares_(static_cast<std::size_t>(width)),
          stretches_(static_cast<std::size_t>(width)) {}
    explicit operator bool() const { return plane_ && squares_ && stretches_; }

    OwnedDib Render(const DibHeader* mix, const WarpShape& shape) {
        if (!plane_.Load(mix, SamplePlane::Border::Nearest)) return {};
        const std::int32_t width = plane_.Width(), height = plane_.Height();
        OwnedDib result(DibCreate(width, height, nullptr, 24));
        const LockedDib locked(result.Get());
        if (!locked) return {};
        const WarpSampler sampler(plane_, pluginSettings.TransitionMattcolour);
        const RowView rows(locked.Get());
        const auto fill =
            shape.kind == Warp::Burp ? FillStretches<Warp::Burp> : FillStretches<Warp::Singularity>;
        for (std::int32_t y = 0; y < height; ++y) {
            fill(shape, y + 0.5, width, squares_.data(), stretches_.data());
            RenderRow(sampler, shape, y, rows.Row(y));
        }
        return result;
    }

private:
    void RenderRow(const WarpSampler& sampler, const WarpShape& shape, std::int32_t y,
                   std::uint8_t* out) const {
        const double down = y + 0.5 - shape.centreY;
        for (std::int32_t x = 0; x < plane_.Width(); ++x, out += 3) {
            const auto i = static_cast<std::size_t>(x);
            if (squares_[i] < 1) {
                const double right = x + 0.5 - shape.centreX;
                const StillPoint path{
                    {shape.centreX + right * stretches_[i], shape.centreY + down * stretches_[i]}};
                sampler.Write(path, 1, out);
            } else {
                std::memcpy(out, plane_.At(x, y), 3);
            }
        }
    }

    SamplePlane plane_;
    Array<double> squares_, stretches_;
};

int Implode(TransitionContext& context, Warp kind) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionImplodeStep;
    if (!run || step == 0) return kEffectFailed;
    Imploder imploder(run.Width(), run.Height());
    if (!imploder) return kEffectFailed;
    for (std::int64_t p = step; p < 100; p += step) {
        OwnedDib frame;
        {
            const OwnedDib mix(DibCrossfade(run.Source(), run.Target(), static_cast<int>(p * 255 / 100)));
            const LockedDib locked(mix.Get());
            if (!locked) return kEffectFailed;
            frame = imploder.Render(locked.Get(), ShapeAt(kind, p, run.Width(), run.Height()));
        }
        if (!run.Emit(std::move(frame))) return kEffectFailed;
    }
    return kEffectDone;
}

std::int64_t ImplodeFrames() {
    const std::int64_t step = pluginSettings.TransitionImplodeStep;
    return step == 0 ? 0 : 1 + LoopCount(step, 100, step);
}

} // namespace

int QuantumSingularity(TransitionContext& context) { return Implode(context, Warp::Singularity); }
std::int64_t QuantumSingularityFrames(CanvasSize) { return ImplodeFrames(); }

int Burp(TransitionContext& context) { return Implode(context, Warp::Burp); }
std::int64_t BurpFrames(CanvasSize) { return ImplodeFrames(); }

} // namespace lumafold
