// Colours between pixels, for effects that bend the picture. A point is in picture units, pixel centres at +
// 0.5: colour = bilinear at (u - 0.5, v - 0.5) clamped to the edge pixels, as a + (b - a) * f along x, then
// along y; coverage = clamp(min(u, W - u) + 1, 0, 1) times the same in v; result = coverage * colour + (1 -
// coverage) * matte. All in doubles; the average of a pixel's points is rounded once, as trunc(average +
// 0.5).
#pragma once

#include <emmintrin.h>

#include "image/dib.h"

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

struct SamplePoint {
    double u, v;
};

/// One point, as a path of its own.
struct StillPoint {
    SamplePoint point;
    SamplePoint Next() const { return point; }
};

/// Samples a plane with Border::Nearest, which outlives it.
class WarpSampler {
public:
    WarpSampler(const SamplePlane& plane, PixelValue matte);

    /// Writes one 24-bit pixel: the average of the `count` points that `path.Next()` gives, count >= 1. The
    /// path is walked in a copy, and again where a first result in floats is too near a step to be sure of.
    template <typename Path>
    void Write(const Path& path, std::int32_t count, std::uint8_t* pixel) const;

private:
    void AddExact(SamplePoint point, double* sums) const;
    static __m128 Channels(__m128i pixels);
    bool AddFast(SamplePoint point, __m128& sum) const;
    static bool Store(__m128 sum, std::int32_t count, std::uint8_t* pixel);

    const SamplePlane& plane_;
    double width_, height_;
    double matte_[3]; // in the order of the bytes
};

template <typename Path>
void WarpSampler::Write(const Path& path, std::int32_t count, std::uint8_t* pixel) const {
    {
        Path walk = path;
        __m128 sum = _mm_setzero_ps();
        bool sure = true;
        for (std::int32_t i = 0; i < count && sure; ++i) {
            sure = AddFast(walk.Next(), sum);
        }
        if (sure && Store(sum, count, pixel)) return;
    }
    Path walk = path;
    double sums[3] = {};
    for (std::int32_t i = 0; i < count; ++i) {
        AddExact(walk.Next(), sums);
    }
    for (int c = 0; c < 3; ++c) {
        const double rounded = sums[c] / count + 0.5;
        pixel[c] = static_cast<std::uint8_t>(rounded);
    }
}

inline __m128 WarpSampler::Channels(__m128i pixels) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(pixels, zero), zero));
}

/// Adds a point that lies on the picture; false for one that the matte may touch.
inline bool WarpSampler::AddFast(SamplePoint point, __m128& sum) const {
    if (!(point.u >= 0 && point.u <= width_ && point.v >= 0 && point.v <= height_)) return false;
    // Half a pixel back, and one on for the plane's border.
    const double x = point.u + 0.5, y = point.v + 0.5;
    const auto column = static_cast<std::int32_t>(x), row = static_cast<std::int32_t>(y);
    const __m128 fx = _mm_set1_ps(static_cast<float>(x - column)),
                 fy = _mm_set1_ps(static_cast<float>(y - row));
    const std::uint32_t* above = plane_.At(column - 1, row - 1);
    const __m128i top = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(above));
    const __m128i bottom = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(above + plane_.Stride()));
    const auto along = [](__m128 a, __m128 b, __m128 f) {
        return _mm_add_ps(a, _mm_mul_ps(_mm_sub_ps(b, a), f));
    };
    const __m128 upper = along(Channels(top), Channels(_mm_srli_epi64(top, 32)), fx);
    const __m128 lower = along(Channels(bottom), Channels(_mm_srli_epi64(bottom, 32)), fx);
    sum = _mm_add_ps(sum, along(upper, lower, fy));
    return true;
}

/// Rounds the average; false where the error of the floats leaves a channel open.
inline bool WarpSampler::Store(__m128 sum, std::int32_t count, std::uint8_t* pixel) {
    const float error = static_cast<float>(count + 16) * 256.0F * 0x1p-24F;
    const __m128 value =
        _mm_add_ps(_mm_mul_ps(sum, _mm_set1_ps(1.0F / static_cast<float>(count))), _mm_set1_ps(0.5F));
    const __m128i levels = _mm_cvttps_epi32(value);
    const __m128 rest = _mm_sub_ps(value, _mm_cvtepi32_ps(levels));
    const __m128 open =
        _mm_or_ps(_mm_cmplt_ps(rest, _mm_set1_ps(error)), _mm_cmpgt_ps(rest, _mm_set1_ps(1.0F - error)));
    if ((_mm_movemask_ps(open) & 7) != 0) return false;
    const __m128i words = _mm_packs_epi32(levels, levels);
    const auto bytes = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    std::memcpy(pixel, &bytes, 3);
    return true;
}

} // namespace lumafold
