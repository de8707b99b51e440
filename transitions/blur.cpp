// The Gaussian blur. BlurRow is its definition, in doubles, tap by tap. The passes over a whole picture work
// in floats, sixteen bytes at once, with a bound on their error: a value too near a step to be sure of is
// computed again by the definition, so every byte is the definition's. Grey pictures, which masks are, take
// one channel.
#include <cmath>

#include "numbers/portable_math.h"
#include "transitions/compositing.h"
#include "transitions/grey.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lumafold {
namespace {

/// More taps than this count as a kernel that cannot be had; no dialog allows a thousandth of it.
constexpr std::int32_t kMostTaps = 1 << 20;

/// The weights with the taps whose weight is not zero: what lies beyond them adds nothing.
struct Kernel {
    const double* weights;
    std::int32_t taps, half, first, last; // last not included

    explicit Kernel(const Array<double>& array)
        : weights(array.data()), taps(static_cast<std::int32_t>(array.size())), half(taps / 2), first(0),
          last(taps) {
        while (first < last && weights[first] == 0) {
            ++first;
        }
        while (last > first && weights[last - 1] == 0) {
            --last;
        }
    }
};

/// The taps that fall inside a line of `count` pixels around pixel x.
struct TapRange {
    std::int32_t first, last; // last not included
    bool whole;
};
TapRange TapsInside(const Kernel& kernel, std::int32_t count, std::int32_t x) {
    const bool whole = x >= kernel.half && x < count - kernel.half;
    return {std::max(kernel.first, kernel.half - x), std::min(kernel.last, count - x + kernel.half), whole};
}

/// One byte of the result by the definition. `line` is that byte in the line's first pixel, `step` the way
/// on.
std::uint8_t ExactByte(const Kernel& kernel, const std::uint8_t* line, std::ptrdiff_t step,
                       std::int32_t count, std::int32_t x) {
    const TapRange range = TapsInside(kernel, count, x);
    const std::uint8_t* tap = line + step * (x - kernel.half + range.first);
    double sum = 0, used = 0;
    for (std::int32_t k = range.first; k < range.last; ++k, tap += step) {
        sum += kernel.weights[k] * *tap;
        used += kernel.weights[k];
    }
    // At the borders half a level is added before the division, not after it (docs/quirks.md 10). It must not
    // pass white.
    const double value = range.whole ? sum + 0.5 : (sum + 0.5) / used;
    return static_cast<std::uint8_t>(std::min(static_cast<int>(value), 255));
}

/// What the passes share: the kernel in floats, and how far a float sum may be from the definition's.
class FastBlur {
public:
    explicit FastBlur(const Array<double>& weights)
        : kernel_(weights), floats_(static_cast<std::size_t>(std::max(kernel_.last - kernel_.first, 1))) {
        for (std::int32_t k = kernel_.first; floats_ && k < kernel_.last; ++k) {
            floats_[static_cast<std::size_t>(k - kernel_.first)] = static_cast<float>(kernel_.weights[k]);
        }
        margin_ = static_cast<float>(kernel_.last - kernel_.first + 8) * 256.0F * 0x1p-24F;
        // A window of one value must give that value back before it may be copied.
        flatIsIdentity_ = kernel_.last > kernel_.first;
        for (int v = 0; v < 256 && flatIsIdentity_; ++v) {
            double level = 0;
            for (std::int32_t k = kernel_.first; k < kernel_.last; ++k) {
                level += kernel_.weights[k] * v;
            }
            level += 0.5;
            flatIsIdentity_ = static_cast<int>(level) == v;
        }
    }

    explicit operator bool() const { return static_cast<bool>(floats_); }

    /// Rows of `count` pixels of `channels` interleaved bytes, from `in` to `out`.
    bool Rows(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out, std::ptrdiff_t outStride,
              std::int32_t count, std::int32_t rows, std::int32_t channels) const;
    /// Columns: `rows` rows of `bytes` bytes, every byte its own column.
    bool Columns(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out, std::ptrdiff_t outStride,
                 std::int32_t bytes, std::int32_t rows) const;

private:
    static constexpr std::int32_t kLanes = 16;
    static constexpr std::int32_t kStrip = 64;

    unsigned SumLanes(const float* taps, std::ptrdiff_t step, TapRange range, float inverse, float margin,
                      std::uint8_t* out) const;
    void Row(const std::uint8_t* in, std::uint8_t* out, std::int32_t count, std::int32_t channels,
             float* floats) const;
    void Strip(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out, std::ptrdiff_t outStride,
               std::int32_t rows, float* floats) const;

    Kernel kernel_;
    Array<float> floats_;
    float margin_ = 0;
    bool flatIsIdentity_ = false;
};

void ToFloats(const std::uint8_t* bytes, float* floats, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        floats[i] = bytes[i];
    }
}

bool AreEqual(const std::uint8_t* bytes, std::int32_t count) {
    return std::memcmp(bytes, bytes + 1, static_cast<std::size_t>(count - 1)) == 0;
}

/// Sixteen neighbouring sums from floats at `taps`, a tap every `step`. A set bit of the result marks a byte
/// that the margin leaves open.
#ifdef __SSE2__
unsigned FastBlur::SumLanes(const float* taps, std::ptrdiff_t step, TapRange range, float inverse,
                            float margin, std::uint8_t* out) const {
    __m128 sums[4] = {_mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps()};
    const float* weight = floats_.data() + (range.first - kernel_.first);
    for (std::int32_t k = range.first; k < range.last; ++k, taps += step, ++weight) {
        const __m128 w = _mm_set1_ps(*weight);
        for (int j = 0; j < 4; ++j) {
            sums[j] = _mm_add_ps(sums[j], _mm_mul_ps(w, _mm_loadu_ps(taps + 4 * j)));
        }
    }
    const __m128 half = _mm_set1_ps(0.5F), scale = _mm_set1_ps(inverse);
    const __m128 low = _mm_set1_ps(margin), high = _mm_set1_ps(1.0F - margin);
    __m128i levels[4];
    unsigned open = 0;
    for (int j = 0; j < 4; ++j) {
        const __m128 value = _mm_mul_ps(_mm_add_ps(sums[j], half), scale);
        levels[j] = _mm_cvttps_epi32(value);
        const __m128 rest = _mm_sub_ps(value, _mm_cvtepi32_ps(levels[j]));
        const __m128 near = _mm_or_ps(_mm_cmplt_ps(rest, low), _mm_cmpgt_ps(rest, high));
        open |= static_cast<unsigned>(_mm_movemask_ps(near)) << (4 * j);
    }
    const __m128i bytes =
        _mm_packus_epi16(_mm_packs_epi32(levels[0], levels[1]), _mm_packs_epi32(levels[2], levels[3]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
    return open;
}
#else
unsigned FastBlur::SumLanes(const float* taps, std::ptrdiff_t step, TapRange range, float inverse,
                            float margin, std::uint8_t* out) const {
    float sums[kLanes] = {};
    const float* weight = floats_.data() + (range.first - kernel_.first);
    for (std::int32_t k = range.first; k < range.last; ++k, taps += step, ++weight) {
        for (std::int32_t j = 0; j < kLanes; ++j)
            sums[j] += *weight * taps[j];
    }
    unsigned open = 0;
    for (std::int32_t j = 0; j < kLanes; ++j) {
        const float value = (sums[j] + 0.5F) * inverse;
        const auto level = static_cast<std::int32_t>(value);
        const float rest = value - static_cast<float>(level);
        open |= (rest < margin || rest > 1.0F - margin ? 1U : 0U) << j;
        out[j] = static_cast<std::uint8_t>(std::min(level, 255));
    }
    return open;
}
#endif

void FastBlur::Row(const std::uint8_t* in, std::uint8_t* out, std::int32_t count, std::int32_t channels,
                   float* floats) const {
    const auto exact = [&](std::int32_t byte) {
        out[byte] = ExactByte(kernel_, in + byte % channels, channels, count, byte / channels);
    };
    const std::int32_t half = kernel_.half;
    const std::int32_t bytes = count * channels;
    const std::int32_t begin = std::min(half, count) * channels;
    const std::int32_t end = std::max(count - half, std::min(half, count)) * channels;
    for (std::int32_t i = 0; i < begin; ++i) {
        exact(i);
    }
    for (std::int32_t i = end; i < bytes; ++i) {
        exact(i);
    }
    if (end - begin < kLanes) {
        for (std::int32_t i = begin; i < end; ++i) {
            exact(i);
        }
        return;
    }

    // In one channel a window of equal bytes, which masks are full of, need not be summed.
    const bool mayCopy = channels == 1 && flatIsIdentity_;
    if (mayCopy && AreEqual(in, bytes)) {
        std::memcpy(out + begin, in + begin, static_cast<std::size_t>(end - begin));
        return;
    }
    ToFloats(in, floats, bytes);
    const TapRange all{kernel_.first, kernel_.last, true};
    for (std::int32_t i = begin;;) {
        if (mayCopy && AreEqual(in + i - half, kLanes + 2 * half)) {
            std::memcpy(out + i, in + i, kLanes);
        } else {
            const float* taps = floats + i + static_cast<std::ptrdiff_t>(channels) * (kernel_.first - half);
            unsigned open = SumLanes(taps, channels, all, 1.0F, margin_, out + i);
            for (std::int32_t lane = 0; open != 0; ++lane, open >>= 1) {
                if ((open & 1) != 0) exact(i + lane);
            }
        }
        if (i + kLanes == end) break;
        // The last block reaches back over the one before, so that it is whole too.
        i = std::min(i + kLanes, end - kLanes);
    }
}

bool FastBlur::Rows(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out,
                    std::ptrdiff_t outStride, std::int32_t count, std::int32_t rows,
                    std::int32_t channels) const {
    const auto bytes = static_cast<std::size_t>(count) * static_cast<std::size_t>(channels);
    Array<float> floats(bytes + kLanes);
    if (!floats) return false;
    for (std::int32_t y = 0; y < rows; ++y) {
        Row(in + inStride * y, out + outStride * y, count, channels, floats.data());
    }
    return true;
}

/// kStrip columns, held as floats so that the window slides down within the nearest cache.
void FastBlur::Strip(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out,
                     std::ptrdiff_t outStride, std::int32_t rows, float* floats) const {
    const std::int32_t half = kernel_.half;
    const std::int32_t window = 2 * half + 1;
    const bool useRuns = flatIsIdentity_ && window < 255 && rows >= window;
    std::uint8_t runs[kStrip] = {};
    std::int32_t entered = 0;
    for (std::int32_t y = 0; y < rows; ++y) {
        // Rows enter the window one ahead of their use.
        for (; entered < rows && entered <= y + half; ++entered) {
            const std::uint8_t* row = in + inStride * entered;
            ToFloats(row, floats + static_cast<std::ptrdiff_t>(entered) * kStrip, kStrip);
            const std::uint8_t* above = entered > 0 ? row - inStride : row;
            for (std::int32_t i = 0; i < kStrip; ++i) {
                const int run = row[i] == above[i] ? runs[i] : 0;
                runs[i] = static_cast<std::uint8_t>(run < 255 ? run + 1 : 255);
            }
        }
        const TapRange range = TapsInside(kernel_, rows, y);
        float inverse = 1.0F, margin = margin_;
        if (!range.whole) {
            double used = 0;
            for (std::int32_t k = range.first; k < range.last; ++k) {
                used += kernel_.weights[k];
            }
            inverse = static_cast<float>(1.0 / used);
            margin = 2 * margin_ * inverse;
        }
        const float* taps = floats + static_cast<std::ptrdiff_t>(y - half + range.first) * kStrip;
        std::uint8_t* target = out + outStride * y;
        for (std::int32_t i = 0; i < kStrip; i += kLanes) {
            if (useRuns && range.whole) {
                int shortest = 255;
                for (std::int32_t lane = 0; lane < kLanes; ++lane) {
                    shortest = std::min<int>(shortest, runs[i + lane]);
                }
                if (shortest >= window) {
                    std::memcpy(target + i, in + inStride * y + i, kLanes);
                    continue;
                }
            }
            unsigned open = SumLanes(taps + i, kStrip, range, inverse, margin, target + i);
            for (std::int32_t lane = 0; open != 0; ++lane, open >>= 1) {
                if ((open & 1) != 0) target[i + lane] = ExactByte(kernel_, in + i + lane, inStride, rows, y);
            }
        }
    }
}

bool FastBlur::Columns(const std::uint8_t* in, std::ptrdiff_t inStride, std::uint8_t* out,
                       std::ptrdiff_t outStride, std::int32_t bytes, std::int32_t rows) const {
    Array<float> floats(static_cast<std::size_t>(rows) * kStrip);
    if (!floats) return false;
    if (bytes < kStrip) {
        for (std::int32_t y = 0; y < rows; ++y) {
            for (std::int32_t i = 0; i < bytes; ++i)
                out[outStride * y + i] = ExactByte(kernel_, in + i, inStride, rows, y);
        }
        return true;
    }
    for (std::int32_t i = 0;;) {
        Strip(in + i, inStride, out + i, outStride, rows, floats.data());
        if (i + kStrip == bytes) return true;
        i = std::min(i + kStrip, bytes - kStrip);
    }
}

bool BlurGrey(const FastBlur& blur, const ConstRowView& source, const RowView& target) {
    const std::int32_t width = source.Width(), height = source.Height();
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    Array<std::uint8_t> before(pixels), after(pixels);
    if (!before || !after) return false;
    GatherGrey(source, before.data());
    if (!blur.Rows(before.data(), width, after.data(), width, width, height, 1)) return false;
    if (!blur.Columns(after.data(), width, before.data(), width, width, height)) return false;
    SpreadGrey(before.data(), target);
    return true;
}

bool BlurColour(const FastBlur& blur, const ConstRowView& source, const RowView& target) {
    const std::int32_t width = source.Width(), height = source.Height(), bytes = width * 3;
    Array<std::uint8_t> between(source.RowBytes() * static_cast<std::size_t>(height));
    if (!between) return false;
    if (!blur.Rows(source.Row(0), -source.Stride(), between.data(), bytes, width, height, 3)) return false;
    return blur.Columns(between.data(), bytes, target.Row(0), -target.Stride(), bytes, height);
}

} // namespace

Array<double> GaussianKernel(std::int32_t taps, double sigma) {
    if (taps < 1) taps = 3;
    Array<double> weights(taps > kMostTaps ? SIZE_MAX : static_cast<std::size_t>(taps));
    if (!weights) return weights;
    const ExtendedPrecision precision;
    const long double spread = 18.0L * sigma * sigma;
    // Three samples a tap, a third of a pixel apart: hence the nine in the spread. Beyond `reach` all are 0.
    const std::int64_t half = std::int64_t{3} * taps / 2;
    const auto reach = static_cast<std::int64_t>(std::min<long double>(
        static_cast<long double>(half), std::sqrt(static_cast<double>(spread) * 750.0) + 1));
    for (std::int64_t i = -reach; i <= reach; ++i) {
        const long double sample = PortableExp(static_cast<long double>(-(i * i)) / spread);
        double& weight = weights[static_cast<std::size_t>((i + half) / 3)];
        weight = static_cast<double>(static_cast<long double>(weight) + sample);
    }
    double sum = 0;
    for (const double weight : weights) {
        sum += weight;
    }
    for (double& weight : weights) {
        weight /= sum;
    }
    return weights;
}

void BlurRow(const Array<double>& weights, const std::uint8_t* source, std::uint8_t* target,
             std::int32_t count) {
    const Kernel kernel(weights);
    for (std::int32_t i = 0; i < count * 3; ++i) {
        target[i] = ExactByte(kernel, source + i % 3, 3, count, i / 3);
    }
}

OwnedDib DibGaussianBlur(const DibHeader& picture, std::int32_t radius, std::int32_t sigma) {
    if (picture.biBitCount != 24) return {};
    // The padding behind the pixels stays that of the picture.
    OwnedDib result = DibCopy(picture);
    if (!result || picture.biWidth < 1 || picture.biHeight < 1) return result;

    const double reach = std::ceil(radius * 0.1);
    const double taps = 2 * reach + 1;
    // A kernel that cannot be had leaves no taps, and the passes give black (docs/quirks.md 11).
    const Array<double> weights =
        GaussianKernel(taps > kMostTaps ? INT32_MAX : static_cast<std::int32_t>(taps), sigma * 0.1);
    const FastBlur blur(weights);
    if (!blur) return {};
    const ConstRowView from(picture);
    if (!(IsGrey(from) ? BlurGrey : BlurColour)(blur, from, result.Rows())) return {};
    return result;
}

} // namespace lumafold
