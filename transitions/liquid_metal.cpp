// Liquid metal: the source fades into the target under a circular ripple that swells, then dies down along
// the same strengths. The ripple moves a pixel by the same distance along x and y, which gives the sheared
// look.
#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

/// The waves of one frame, by the distance from the centre in pixels.
class Waves {
public:
    Waves(float strength, double farthest)
        : amplitude_(0.01 * (Hundredths(strength * 7930.0F) + 70)),
          length_(0.01 * (Hundredths(strength * 600.0F) + 400)), farthest_(farthest) {}

    double Displacement(double r) const {
        constexpr double kTwoPi = 2 * 3.14159265358979323846;
        constexpr double kPhase = 0.01 * 180, kDamping = 0.01 * 15;
        const double wave = PortableSin(r / length_ * kTwoPi + kPhase) * amplitude_;
        return (1 - r / farthest_) * kDamping * wave;
    }

private:
    static std::int32_t Hundredths(float value) {
        return static_cast<std::int32_t>(std::clamp(value, -1.0e9F, 1.0e9F));
    }

    double amplitude_, length_, farthest_;
};

/// One axis as the centre sees it: pixels equally far to either side share a class. Distances are kept
/// doubled, which makes them whole.
class RippleAxis {
public:
    RippleAxis(std::int32_t size, std::int32_t centrePercent)
        : doubledCentre_((std::int64_t{centrePercent} - 100) * size / 100 * 2 + size), size_(size),
          classes_(static_cast<std::size_t>(size)) {
        nearest_ = Doubled(0);
        std::int64_t farthest = nearest_;
        for (std::int32_t i = 1; i < size; ++i) {
            nearest_ = std::min(nearest_, Doubled(i));
            farthest = std::max(farthest, Doubled(i));
        }
        count_ = static_cast<std::size_t>((farthest - nearest_) / 2 + 1);
        for (std::int32_t i = 0; i < size && classes_; ++i) {
            classes_[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>((Doubled(i) - nearest_) / 2);
        }
    }

    explicit operator bool() const { return static_cast<bool>(classes_); }
    std::size_t Count() const { return count_; }
    std::size_t ClassOf(std::int32_t at) const { return classes_[static_cast<std::size_t>(at)]; }
    const std::uint32_t* Classes() const { return classes_.data(); }
    double Distance(std::size_t index) const {
        return 0.5 * static_cast<double>(nearest_ + 2 * std::int64_t(index));
    }
    double ToFarEnd() const { return size_ - 0.5 * static_cast<double>(doubledCentre_); }

private:
    std::int64_t Doubled(std::int32_t at) const { return std::abs(2 * std::int64_t{at} - doubledCentre_); }

    std::int64_t doubledCentre_, nearest_ = 0;
    std::int32_t size_;
    std::size_t count_ = 0;
    Array<std::uint32_t> classes_;
};

/// The displacement of every pixel. A frame's sines are worked out once for each distance that occurs.
class RippleField {
public:
    RippleField(std::int32_t width, std::int32_t height, std::int32_t centreX, std::int32_t centreY)
        : columns_(width, centreX), rows_(height, centreY), width_(static_cast<std::size_t>(width)),
          slots_(columns_.Count() * rows_.Count()), radii_(slots_.size()), displacements_(slots_.size()),
          line_(width_) {
        if (columns_ && rows_ && slots_ && radii_ && displacements_ && line_) ready_ = AssignSlots();
        const double x = columns_.ToFarEnd(), y = rows_.ToFarEnd();
        farthest_ = std::sqrt(x * x + y * y) + 0.0001;
    }

    explicit operator bool() const { return ready_; }

    void SetStrength(float strength) {
        const Waves waves(strength, farthest_);
        for (std::size_t i = 0; i < radiusCount_; ++i) {
            displacements_[i] = waves.Displacement(radii_[i]);
        }
    }
    /// One row's displacements, until the next call.
    const double* Row(std::int32_t y) {
        const std::uint32_t* slots = slots_.data() + rows_.ClassOf(y) * columns_.Count();
        const std::uint32_t* classes = columns_.Classes();
        for (std::size_t x = 0; x < width_; ++x) {
            line_[x] = displacements_[slots[classes[x]]];
        }
        return line_.data();
    }

private:
    /// Equal squared distances get one slot. A far-off centre has hardly any, and then a table of them does
    /// not pay.
    bool AssignSlots() {
        const auto squared = [this](std::size_t column, std::size_t row) {
            const double dx = columns_.Distance(column), dy = rows_.Distance(row);
            return dx * dx + dy * dy;
        };
        const double largest = squared(columns_.Count() - 1, rows_.Count() - 1);
        // Doubled distances along an axis are all odd or all even, so whole squares tell the distances apart.
        const bool shared = largest < 8.0 * static_cast<double>(slots_.size()) + 256;
        Array<std::uint32_t> known(shared ? static_cast<std::size_t>(largest) + 1 : 1); // slot + 1, or 0
        if (!known) return false;
        for (std::size_t row = 0, i = 0; row < rows_.Count(); ++row) {
            for (std::size_t column = 0; column < columns_.Count(); ++column, ++i) {
                const double square = squared(column, row);
                std::uint32_t fresh = 0;
                std::uint32_t& slot = shared ? known[static_cast<std::size_t>(square)] : fresh;
                if (slot == 0) {
                    radii_[radiusCount_] = std::sqrt(square);
                    slot = static_cast<std::uint32_t>(++radiusCount_);
                }
                slots_[i] = slot - 1;
            }
        }
        return true;
    }

    RippleAxis columns_, rows_;
    std::size_t width_;
    Array<std::uint32_t> slots_;
    Array<double> radii_, displacements_, line_;
    std::size_t radiusCount_ = 0;
    double farthest_ = 0;
    bool ready_ = false;
};

/// Four pixels in two lines, weighed in floats: (1 - fy) * ((1 - fx) * p00 + fx * p10) + fy * (...),
/// truncated. Every product and sum is rounded to a float in this order, so a flat area may lose a level:
/// wanted.
#ifdef __SSE2__
std::uint32_t BilinearSample(float fx, float fy, const std::uint32_t* top, const std::uint32_t* bottom) {
    const auto line = [fx](const std::uint32_t* pixels) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i words =
            _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)), zero);
        const __m128 left = _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero));
        const __m128 right = _mm_cvtepi32_ps(_mm_unpackhi_epi16(words, zero));
        return _mm_add_ps(_mm_mul_ps(left, _mm_set1_ps(1.0F - fx)), _mm_mul_ps(right, _mm_set1_ps(fx)));
    };
    const __m128 value =
        _mm_add_ps(_mm_mul_ps(_mm_set1_ps(1.0F - fy), line(top)), _mm_mul_ps(_mm_set1_ps(fy), line(bottom)));
    const __m128i levels = _mm_cvttps_epi32(value);
    const __m128i words = _mm_packs_epi32(levels, levels);
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}
#else
std::uint32_t BilinearSample(float fx, float fy, const std::uint32_t* top, const std::uint32_t* bottom) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto line = [=](const std::uint32_t* pixels) {
            const auto left = static_cast<float>((pixels[0] >> shift) & 0xFF);
            const auto right = static_cast<float>((pixels[1] >> shift) & 0xFF);
            return left * (1.0F - fx) + right * fx;
        };
        result |= static_cast<std::uint32_t>((1.0F - fy) * line(top) + fy * line(bottom)) << shift;
    }
    return result;
}
#endif

/// The picture in `plane` as the field bends it. Neighbours beyond the right and lower edge are black.
OwnedDib LiquidMetalRipple(const SamplePlane& plane, RippleField& field) {
    const std::int32_t width = plane.Width(), height = plane.Height();
    OwnedDib result(DibCreate(width, height, nullptr, 24));
    const LockedDib locked(result.Get());
    if (!locked) return {};
    const RowView rows(locked.Get());
    const double lastColumn = width - 1, lastRow = height - 1;
    for (std::int32_t y = 0; y < height; ++y) {
        const double* displacements = field.Row(y);
        std::uint8_t* out = rows.Row(y);
        for (std::int32_t x = 0; x < width; ++x, out += 3) {
            const double sx = std::clamp(x + displacements[x], 0.0, lastColumn);
            const double sy = std::clamp(y + displacements[x], 0.0, lastRow);
            const auto column = static_cast<std::int32_t>(sx), row = static_cast<std::int32_t>(sy);
            const std::uint32_t* top = plane.At(column, row);
            const std::uint32_t pixel = BilinearSample(
                static_cast<float>(sx - column), static_cast<float>(sy - row), top, top + plane.Stride());
            std::memcpy(out, &pixel, 3);
        }
    }
    return result;
}

/// How strong the ripple is: grows up to half the fade, then the strengths come back in reverse.
class StrengthHistory {
public:
    float Next(std::int64_t share) {
        constexpr std::int64_t kSwellEnd = 128;
        if (share > kSwellEnd) {
            --count_;
            return strengths_[static_cast<std::size_t>(std::max<std::int64_t>(count_, 0))];
        }
        const float strength = static_cast<float>(share) * 0.0078125F;
        strengths_[static_cast<std::size_t>(count_++)] = strength;
        return strength;
    }
    /// Strengths in store; runs below 0 at the end.
    std::int64_t Count() const { return count_; }

private:
    std::array<float, 128> strengths_{}; // a step of 1 fills it
    std::int64_t count_ = 0;
};

constexpr std::int64_t kFullShare = 255;

/// Frames last longer while many strengths are in store: wanted.
std::int32_t FrameDelay(std::int64_t delay, std::int64_t half, std::int64_t stored) {
    if (half == 0 || half >> 1 >= stored) return static_cast<std::int32_t>(delay);
    return static_cast<std::int32_t>(delay * stored * 2 / half + delay);
}

} // namespace

int LiquidMetal(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionLiquidMetalStep;
    if (!run || step == 0) return kEffectFailed;
    const auto factor = static_cast<float>(0.01 * pluginSettings.TransitionLiquidMetalViscosity);
    RippleField field(run.Width(), run.Height(),
                      static_cast<std::int32_t>(pluginSettings.TransitionLiquidMetalCenterX),
                      static_cast<std::int32_t>(pluginSettings.TransitionLiquidMetalCenterY));
    SamplePlane plane(run.Width(), run.Height());
    if (!field || !plane) return kEffectFailed;

    const std::int64_t half = kFullShare / step >> 1;
    StrengthHistory strengths;
    for (std::int64_t share = step; share < kFullShare; share += step) {
        field.SetStrength(strengths.Next(share) * factor);
        {
            const OwnedDib mix(DibCrossfade(run.Source(), run.Target(), static_cast<int>(share)));
            const LockedDib locked(mix.Get());
            if (!locked || !plane.Load(locked.Get(), SamplePlane::Border::Black)) return kEffectFailed;
        }
        if (!run.Emit(LiquidMetalRipple(plane, field), FrameDelay(run.Delay(), half, strengths.Count()))) {
            return kEffectFailed;
        }
    }
    return kEffectDone;
}
std::int64_t LiquidMetalFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionLiquidMetalStep;
    return step == 0 ? 0 : 1 + LoopCount(step, kFullShare, step);
}

} // namespace lumafold
