// Colours between pixels, for effects that bend the picture. A point is in picture units, pixel centres at +
// 0.5: colour = bilinear at (u - 0.5, v - 0.5) clamped to the edge pixels, as a + (b - a) * f along x, then
// along y; coverage = clamp(min(u, W - u) + 1, 0, 1) times the same in v; result = coverage * colour + (1 -
// coverage) * matte. All in doubles; the average of a pixel's points is rounded once, as trunc(average +
// 0.5).
#pragma once

#include <limits>

#include "platform/simd.h"
#include "transitions/compositing.h"
#include "transitions/gap.h"

namespace lumafold {

/// A picture at 32 bits a pixel (blue, green, red, 0) with one more pixel all round, so that neighbours need
/// no test.
class SamplePlane {
public:
    enum class Border { Black, Nearest };

    SamplePlane() = default;
    /// Holds a 24-bit picture of at least one pixel. Check it before use: the memory may not have been there.
    SamplePlane(const DibHeader& picture, Border border);
    explicit operator bool() const { return static_cast<bool>(pixels_); }

    std::int32_t Width() const { return width_; }
    std::int32_t Height() const { return height_; }
    std::ptrdiff_t Stride() const { return stride_; }
    /// -1 <= x <= Width(), -1 <= y <= Height().
    const std::uint32_t* At(std::int32_t x, std::int32_t y) const { return origin_ + stride_ * y + x; }

private:
    void CopyPixels(const ConstRowView& rows);
    void RepeatEdges();

    std::int32_t width_ = 0, height_ = 0;
    std::ptrdiff_t stride_ = 0;
    Array<std::uint32_t> pixels_;
    std::uint32_t* origin_ = nullptr;
};

/// Points of neighbouring pixels, one of each.
struct SamplePoints {
    static constexpr std::int32_t kMost = 64;
    double u[kMost], v[kMost];
};

#if LUMAFOLD_SSE2
/// What the points of neighbouring pixels add up to, in floats, a lane for each channel.
class QuickSums {
public:
    explicit QuickSums(const SamplePlane& plane) : plane_(plane) {}

    /// Adds a point to each of `count` sums. One outside the picture, which the matte may touch, makes the
    /// sum infinite or no number.
    LUMAFOLD_IN_CALLER void Add(const SamplePoints& points, std::int32_t count) {
        const double width = plane_.Width(), height = plane_.Height();
        const auto stride = static_cast<double>(plane_.Stride());
        std::int32_t offsets[SamplePoints::kMost];
        float across[SamplePoints::kMost], down[SamplePoints::kMost];
        for (std::int32_t i = 0; i < count; ++i) {
            const double u = HeldWithin(points.u[i], width), v = HeldWithin(points.v[i], height);
            // Half a pixel back, and one on for the plane's border.
            const double x = u + 0.5, y = v + 0.5;
            const double column = static_cast<std::int32_t>(x), row = static_cast<std::int32_t>(y);
            offsets[i] = static_cast<std::int32_t>(row * stride + column);
            across[i] = static_cast<float>(x - column + (points.u[i] - u) * kFarOff);
            down[i] = static_cast<float>(y - row + (points.v[i] - v) * kFarOff);
        }
        const std::uint32_t* first = plane_.At(-1, -1);
        for (std::int32_t i = 0; i < count; ++i) {
            const std::uint32_t* above = first + offsets[i];
            sums_[i] = _mm_add_ps(sums_[i], Bilinear(above, above + plane_.Stride(), _mm_set1_ps(across[i]),
                                                     _mm_set1_ps(down[i])));
        }
    }

    /// Rounds an average of `points`; false where the error of the floats leaves a channel open.
    LUMAFOLD_IN_CALLER bool Store(std::int32_t index, std::int32_t points, std::uint8_t* pixel) const {
        const float error = static_cast<float>(points + 16) * 256.0F * 0x1p-24F;
        const __m128 value = _mm_add_ps(
            _mm_mul_ps(sums_[index], _mm_set1_ps(1.0F / static_cast<float>(points))), _mm_set1_ps(0.5F));
        const __m128i levels = _mm_cvttps_epi32(value);
        const __m128 rest = _mm_sub_ps(value, _mm_cvtepi32_ps(levels));
        const __m128 sure =
            _mm_and_ps(_mm_cmpge_ps(rest, _mm_set1_ps(error)), _mm_cmple_ps(rest, _mm_set1_ps(1.0F - error)));
        if ((_mm_movemask_ps(sure) & 7) != 7) return false;
        const __m128i words = _mm_packs_epi32(levels, levels);
        const auto bytes = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
        std::memcpy(pixel, &bytes, 3);
        return true;
    }

private:
    // What is at all outside leaves the floats.
    static constexpr double kFarOff = std::numeric_limits<double>::max();

    static double HeldWithin(double at, double size) {
        const double low = at > 0 ? at : 0;
        return low < size ? low : size;
    }
    LUMAFOLD_IN_CALLER static __m128 Bilinear(const std::uint32_t* top, const std::uint32_t* bottom,
                                              __m128 fx, __m128 fy) {
        const __m128i zero = _mm_setzero_si128();
        const auto mix = [](__m128 a, __m128 b, __m128 f) {
            return _mm_add_ps(a, _mm_mul_ps(_mm_sub_ps(b, a), f));
        };
        const auto line = [=](const std::uint32_t* pixels) {
            const __m128i words =
                _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)), zero);
            return mix(_mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero)),
                       _mm_cvtepi32_ps(_mm_unpackhi_epi16(words, zero)), fx);
        };
        return mix(line(top), line(bottom), fy);
    }

    const SamplePlane& plane_;
    __m128 sums_[SamplePoints::kMost] = {};
};
#endif

/// Samples a plane with Border::Nearest, which outlives it.
class WarpSampler {
public:
    WarpSampler(const SamplePlane& plane, PixelValue matte);

    /// Writes the pixels `from` to `to`, the latter not included, of a 24-bit row, each the average of
    /// `count`
    /// >= 1 points. `walk(first, pixels, points, take)` fills in the first points of that many pixels and
    /// calls `take()`, then their next ones, and so on. Pixels for which a first result in floats is too near
    /// a step to be sure of are walked again by themselves.
    template <typename Walk>
    LUMAFOLD_IN_CALLER void WriteRow(std::int32_t from, std::int32_t to, std::int32_t count, const Walk& walk,
                                     std::uint8_t* row) const {
        for (std::int32_t first = from; first < to; first += SamplePoints::kMost) {
            const std::int32_t pixels = std::min(SamplePoints::kMost, to - first);
            SamplePoints points;
#if LUMAFOLD_SSE2
            QuickSums sums(plane_);
            walk(first, pixels, points, [&] { sums.Add(points, pixels); });
#endif
            for (std::int32_t i = 0; i < pixels; ++i) {
                std::uint8_t* pixel = row + std::ptrdiff_t{3} * (first + i);
#if LUMAFOLD_SSE2
                if (sums.Store(i, count, pixel)) continue;
#endif
                double exact[3] = {};
                walk(first + i, 1, points, [&] { AddExactly(points.u[0], points.v[0], exact); });
                for (int c = 0; c < 3; ++c) {
                    const double rounded = exact[c] / count + 0.5;
                    pixel[c] = static_cast<std::uint8_t>(rounded);
                }
            }
        }
    }

private:
    void AddExactly(double u, double v, double* sums) const;

    const SamplePlane& plane_;
    double width_, height_;
    double matte_[3]; // in the order of the bytes
};

/// What WithWidestLanes runs for BentCrossfade.
template <typename Bend>
struct BendLoop {
    const Bend& bend;
    WarpSampler sampler;
    RowView rows;

    template <int>
    LUMAFOLD_IN_CALLER void Run() const {
        bend.Render(sampler, rows);
    }
};

/// The cross-fade of the gap at `percent`, bent: `bend.Render(sampler, rows)` writes all rows of the frame
/// through a sampler of the fade, whose matte is the setting's, and is LUMAFOLD_IN_CALLER.
template <typename Bend>
OwnedDib BentCrossfade(const Gap& gap, std::int64_t percent, const Bend& bend) {
    const OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>(percent * 255 / 100));
    if (!mix) return {};
    const SamplePlane plane(*mix, SamplePlane::Border::Nearest);
    OwnedDib result = DibCreate(gap.size.width, gap.size.height, nullptr, 24);
    if (!plane || !result) return {};
    const WarpSampler sampler(plane, gap.settings.TransitionMattcolour);
    WithWidestLanes(BendLoop<Bend>{bend, sampler, result.Rows()});
    return result;
}

} // namespace lumafold
