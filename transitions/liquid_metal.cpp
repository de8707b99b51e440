#include "transitions/liquid_metal.h"

#include <cmath>
#include <numbers>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

constexpr std::int64_t kFullShare = 255;

/// The waves of one frame, by the distance from the centre in pixels.
class Waves {
public:
    Waves(float strength, double farthest)
        : amplitude_(0.01 * (Hundredths(strength * 7930.0F) + 70)),
          length_(0.01 * (Hundredths(strength * 600.0F) + 400)), farthest_(farthest) {}

    double Displacement(double r) const {
        constexpr double kPhase = 0.01 * 180, kDamping = 0.01 * 15;
        const double wave = PortableSin(r / length_ * (2 * std::numbers::pi) + kPhase) * amplitude_;
        return (1 - r / farthest_) * kDamping * wave;
    }

private:
    static std::int32_t Hundredths(float value) {
        return static_cast<std::int32_t>(std::clamp(value, -1.0e9F, 1.0e9F));
    }

    double amplitude_, length_, farthest_;
};

/// Four pixels in two lines, weighed in floats: (1 - fy) * ((1 - fx) * p00 + fx * p10) + fy * (...),
/// truncated. Every product and sum is rounded to a float in this order, so a flat area may lose a level
/// (docs/quirks.md 41).
std::uint32_t BilinearSample(float fx, float fy, const std::uint32_t* top, const std::uint32_t* bottom) {
#if LUMAFOLD_SSE2
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
#else
    std::uint32_t pixel = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto line = [=](const std::uint32_t* pixels) {
            const auto left = static_cast<float>(pixels[0] >> shift & 0xFF),
                       right = static_cast<float>(pixels[1] >> shift & 0xFF);
            return left * (1.0F - fx) + right * fx;
        };
        pixel |= static_cast<std::uint32_t>((1.0F - fy) * line(top) + fy * line(bottom)) << shift;
    }
    return pixel;
#endif
}

/// How many strengths are in store once a frame has taken its own. The store grows by one a frame up to half
/// the fade and then gives them back from its end; it runs below 0 behind the last one.
std::int64_t StoredStrengths(std::int64_t index, std::int64_t step) {
    const std::int64_t rising = kLastRising / step;
    return index < rising ? index + 1 : 2 * rising - 1 - index;
}

/// Half the fade has strength 1.
float StrengthAt(std::int64_t index, std::int64_t step) {
    return static_cast<float>(RiseAndFall(index, step) * step) * 0.0078125F;
}

} // namespace

RippleAxis::RippleAxis(std::int32_t size, std::int32_t centrePercent)
    : doubledCentre_((std::int64_t{centrePercent} - 100) * size / 100 * 2 + size), size_(size),
      classes_(static_cast<std::size_t>(size)) {
    nearest_ = Doubled(0);
    std::int64_t farthest = nearest_;
    for (std::int32_t i = 1; i < size; ++i) {
        nearest_ = std::min(nearest_, Doubled(i));
        farthest = std::max(farthest, Doubled(i));
    }
    count_ = static_cast<std::size_t>((farthest - nearest_) / 2 + 1);
    for (std::int32_t i = 0; i < size && classes_; ++i)
        classes_[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>((Doubled(i) - nearest_) / 2);
}

std::int64_t RippleAxis::Doubled(std::int32_t at) const {
    return std::abs(2 * std::int64_t{at} - doubledCentre_);
}

RippleField::RippleField(CanvasSize size, std::int32_t centreX, std::int32_t centreY)
    : columns_(size.width, centreX), rows_(size.height, centreY), slots_(columns_.Count() * rows_.Count()),
      radii_(slots_.size()),
      farthest_(std::sqrt(columns_.ToFarEnd() * columns_.ToFarEnd() + rows_.ToFarEnd() * rows_.ToFarEnd()) +
                0.0001) {
    if (columns_ && rows_ && slots_ && radii_) ready_ = AssignSlots();
}

/// Equal squared distances get one slot. A far-off centre has hardly any, and then a table of them does not
/// pay. False when memory is short.
bool RippleField::AssignSlots() {
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

Array<double> RippleField::Displacements(float strength) const {
    const Waves waves(strength, farthest_);
    Array<double> displacements(radiusCount_);
    for (std::size_t i = 0; i < displacements.size(); ++i)
        displacements[i] = waves.Displacement(radii_[i]);
    return displacements;
}

void RippleField::FillRow(std::int32_t y, const Array<double>& displacements, Array<double>& row) const {
    const std::uint32_t* slots = slots_.data() + rows_.ClassOf(y) * columns_.Count();
    const std::uint32_t* classes = columns_.Classes();
    for (std::size_t x = 0; x < row.size(); ++x)
        row[x] = displacements[slots[classes[x]]];
}

OwnedDib LiquidMetalRipple(const DibHeader& picture, const RippleField& field, float strength) {
    const std::int32_t width = picture.biWidth, height = picture.biHeight;
    // Neighbours beyond the right and lower edge are black and have no weight.
    const SamplePlane plane(picture, SamplePlane::Border::Black);
    const Array<double> displacements = field.Displacements(strength);
    Array<double> line(static_cast<std::size_t>(width));
    OwnedDib result = DibCreate(width, height, nullptr, 24);
    if (!plane || !displacements || !line || !result) return {};
    const RowView rows = result.Rows();
    const double lastColumn = width - 1, lastRow = height - 1;
    for (std::int32_t y = 0; y < height; ++y) {
        field.FillRow(y, displacements, line);
        std::uint8_t* out = rows.Row(y);
        for (std::int32_t x = 0; x < width; ++x, out += 3) {
            const double displacement = line[static_cast<std::size_t>(x)];
            const double sx = std::clamp(x + displacement, 0.0, lastColumn);
            const double sy = std::clamp(y + displacement, 0.0, lastRow);
            const auto column = static_cast<std::int32_t>(sx), row = static_cast<std::int32_t>(sy);
            const std::uint32_t* top = plane.At(column, row);
            const std::uint32_t pixel = BilinearSample(
                static_cast<float>(sx - column), static_cast<float>(sy - row), top, top + plane.Stride());
            std::memcpy(out, &pixel, 3);
        }
    }
    return result;
}

LiquidMetalPainter::LiquidMetalPainter(const Gap& gap, std::int64_t step)
    : gap_(gap), step_(step),
      viscosity_(static_cast<float>(0.01 * gap.settings.TransitionLiquidMetalViscosity)),
      field_(gap.size, static_cast<std::int32_t>(gap.settings.TransitionLiquidMetalCenterX),
             static_cast<std::int32_t>(gap.settings.TransitionLiquidMetalCenterY)) {}

OwnedDib LiquidMetalPainter::Frame(std::int64_t index) const {
    const OwnedDib mix = DibCrossfade(gap_.source, gap_.target, static_cast<int>((index + 1) * step_));
    return mix ? LiquidMetalRipple(*mix, field_, StrengthAt(index, step_) * viscosity_) : OwnedDib();
}

std::optional<LiquidMetal> LiquidMetal::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionLiquidMetalStep == 0) return {};
    return LiquidMetal(settings.TransitionLiquidMetalStep);
}

std::int64_t LiquidMetal::Frames() const { return LoopCount(step_, kFullShare, step_); }

/// Frames last longer while many strengths are in store (docs/quirks.md 42).
std::int32_t LiquidMetal::Delay(std::int64_t index, std::int32_t delay) const {
    const std::int64_t half = kFullShare / step_ >> 1, stored = StoredStrengths(index, step_);
    if (half == 0 || half >> 1 >= stored) return delay;
    return static_cast<std::int32_t>(delay * stored * 2 / half + delay);
}

} // namespace lumafold
