// Liquid metal: the source fades into the target under a circular ripple that swells, then dies down along
// the same strengths. The ripple moves a pixel by the same distance along x and y, which gives the sheared
// look.
#include <cmath>
#include <numbers>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/run.h"
#include "transitions/sampling.h"

namespace lumafold {
namespace {

/// One axis as the centre sees it: pixels equally far to either side share a class. Distances are kept
/// doubled, which makes them whole.
class RippleAxis {
public:
    RippleAxis(std::int32_t size, std::uint32_t centrePercent)
        : centre_((std::int64_t{static_cast<std::int32_t>(centrePercent)} - 100) * size / 100 * 2 + size),
          size_(size), classes_(static_cast<std::size_t>(size)) {
        const std::int64_t last = 2 * (std::int64_t{size} - 1);
        // Even or odd as the centre is; 0 or 1 where it lies within the picture.
        nearest_ = centre_ < 0 ? -centre_ : centre_ > last ? centre_ - last : centre_ % 2;
        count_ = ClassAt(std::abs(centre_) > std::abs(last - centre_) ? 0 : size - 1) + 1;
        for (std::int32_t i = 0; classes_ && i < size; ++i)
            classes_[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(ClassAt(i));
    }
    explicit operator bool() const { return static_cast<bool>(classes_); }

    std::size_t Count() const { return count_; }
    const Array<std::uint32_t>& Classes() const { return classes_; }
    /// In pixels.
    double Distance(std::size_t index) const {
        return 0.5 * static_cast<double>(nearest_ + 2 * std::int64_t(index));
    }
    double ToFarEnd() const { return size_ - 0.5 * static_cast<double>(centre_); }

private:
    std::size_t ClassAt(std::int32_t at) const {
        return static_cast<std::size_t>((std::abs(2 * std::int64_t{at} - centre_) - nearest_) / 2);
    }

    std::int64_t centre_, nearest_ = 0;
    std::int32_t size_;
    std::size_t count_ = 0;
    Array<std::uint32_t> classes_;
};

/// The distances from the centre that occur in a picture, each once, and where they do. A frame's sines are
/// then worked out once for each. Check it before use.
class RippleField {
public:
    /// The centre in percent of the sides.
    RippleField(CanvasSize size, std::uint32_t centreX, std::uint32_t centreY)
        : columns_(size.width, centreX), rows_(size.height, centreY),
          slots_(columns_.Count() * rows_.Count()), radii_(slots_.size()),
          farthest_(
              std::sqrt(columns_.ToFarEnd() * columns_.ToFarEnd() + rows_.ToFarEnd() * rows_.ToFarEnd()) +
              0.0001) {
        if (columns_ && rows_ && slots_ && radii_) ready_ = AssignSlots();
    }
    explicit operator bool() const { return ready_; }

    /// What a ripple of this strength moves each of the distances by, in pixels; empty when memory is short.
    Array<double> Displacements(float strength) const {
        constexpr double kPhase = 0.01 * 180, kDamping = 0.01 * 15;
        const auto hundredths = [](float value) {
            return static_cast<std::int32_t>(std::clamp(value, -1.0e9F, 1.0e9F));
        };
        const double amplitude = 0.01 * (hundredths(strength * 7930.0F) + 70);
        const double length = 0.01 * (hundredths(strength * 600.0F) + 400);
        Array<double> displacements(radiusCount_);
        for (std::size_t i = 0; i < displacements.size(); ++i) {
            const double r = radii_[i];
            const double wave = PortableSin(r / length * (2 * std::numbers::pi) + kPhase) * amplitude;
            displacements[i] = (1 - r / farthest_) * kDamping * wave;
        }
        return displacements;
    }
    /// One row of the picture's displacements.
    void FillRow(std::int32_t y, const Array<double>& displacements, Array<double>& row) const {
        const std::size_t rowClass = rows_.Classes()[static_cast<std::size_t>(y)];
        const std::uint32_t* slots = slots_.data() + rowClass * columns_.Count();
        const std::uint32_t* classes = columns_.Classes().data();
        for (std::size_t x = 0; x < row.size(); ++x)
            row[x] = displacements[slots[classes[x]]];
    }

private:
    /// Equal squared distances get one slot. A far-off centre has hardly any, and then a table of them does
    /// not pay. False when memory is short.
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
    Array<std::uint32_t> slots_; // index into the radii, by class of row and class of column
    Array<double> radii_;
    std::size_t radiusCount_ = 0;
    double farthest_;
    bool ready_ = false;
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

/// A 24-bit picture of the field's size, as a ripple of this strength bends it.
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

struct LiquidMetal {
    std::int64_t step; ///< levels of 255 a frame

    static std::optional<LiquidMetal> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionLiquidMetalStep == 0) return {};
        return LiquidMetal{settings.TransitionLiquidMetalStep};
    }
    std::int64_t Frames() const { return FramesBelow(255, step); }

    /// A centre in the middle of an axis halves the table along it.
    static RenderNeed Need(const PluginSettings& settings) {
        const auto share = [](std::uint32_t centre) { // in percent of half the size
            return std::min(0.5 + std::abs(static_cast<double>(centre) - 100) / 100, 1.0);
        };
        const double table =
            share(settings.TransitionLiquidMetalCenterX) * share(settings.TransitionLiquidMetalCenterY);
        return {1.5 + 8 * table, 7 + 4 * table};
    }

    RippleField Start(const Gap& gap) const {
        return {gap.size, gap.settings.TransitionLiquidMetalCenterX,
                gap.settings.TransitionLiquidMetalCenterY};
    }
    OwnedDib Frame(const Gap& gap, const RippleField& field, std::int64_t index) const {
        const auto viscosity = static_cast<float>(0.01 * gap.settings.TransitionLiquidMetalViscosity);
        // Half the fade has strength 1.
        const float strength = static_cast<float>(RiseAndFall(index, step) * step) * 0.0078125F;
        const OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>((index + 1) * step));
        return mix ? LiquidMetalRipple(*mix, field, strength * viscosity) : OwnedDib();
    }

    /// Frames last longer while many strengths are in store (docs/quirks.md 42): one more each frame up to
    /// half the fade, then given back from the store's end; it runs below 0 behind the last one.
    std::int32_t Delay(std::int64_t index, std::int32_t delay) const {
        const std::int64_t rising = kLastRising / step, half = 255 / step / 2;
        const std::int64_t stored = index < rising ? index + 1 : 2 * rising - 1 - index;
        if (half == 0 || half / 2 >= stored) return delay;
        return static_cast<std::int32_t>(delay * stored * 2 / half + delay);
    }
};

} // namespace

constinit const Effect kLiquidMetal = EffectOf<LiquidMetal>();

} // namespace lumafold
