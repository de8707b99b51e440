// The Gaussian blur. BlurRow is its definition, in doubles, tap by tap. The passes over a whole picture work
// in floats, many bytes at once, with a bound on their error: a value too near a step to be sure of is
// computed again by the definition, so every byte is the definition's. Where all taps see one value, as they
// do nearly everywhere in a mask, nothing is summed.
#include <cmath>

#include "numbers/portable_math.h"
#include "platform/simd.h"
#include "transitions/compositing.h"

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

/// What the passes share: the kernel in floats, and how far a float sum may be from the definition's. Weights
/// at the same distance before and behind the middle are the same sum of samples, so two taps take one
/// multiplication.
class FastBlur {
public:
    /// `weights` has an odd number of taps and outlives this. Check it before use.
    explicit FastBlur(const Array<double>& weights) : kernel_(weights) {
        for (reach_ = kernel_.half; reach_ > 0 && kernel_.weights[kernel_.half + reach_] == 0;)
            --reach_;
        floats_ = Array<float>(static_cast<std::size_t>(reach_) + 1);
        for (std::size_t k = 0; k < floats_.size(); ++k)
            floats_[k] = static_cast<float>(kernel_.weights[kernel_.half + static_cast<std::int32_t>(k)]);
        margin_ = static_cast<float>(reach_ + 9) * 256.0F * 0x1p-24F;
        keepsAll_ = true;
        for (int v = 0; v < 256; ++v) {
            double level = 0;
            for (std::int32_t k = kernel_.first; k < kernel_.last; ++k)
                level += kernel_.weights[k] * v;
            level += 0.5;
            keepsAll_ = keepsAll_ && static_cast<int>(level) == v;
        }
    }
    explicit operator bool() const { return static_cast<bool>(floats_); }

    const Kernel& Taps() const { return kernel_; }
    /// The farthest tap that weighs anything.
    std::int32_t Reach() const { return reach_; }
    /// Of the middle tap, and of those at distances from 1 to the reach.
    const float* Weights() const { return floats_.data(); }
    /// Of the sums, in levels, where all taps fall inside.
    float Margin() const { return margin_; }
    /// Whether all taps fall inside a line of `count` pixels around those from `first` to `last`.
    bool IsWhole(std::int32_t first, std::int32_t last, std::int32_t count) const {
        return first >= kernel_.half && last < count - kernel_.half;
    }
    /// Whether values that all taps see come out as they are. At the border, where up to half a level over
    /// the weight inside is added, black and white do: nothing passes white.
    bool Keeps(const std::uint8_t* values, std::int32_t count, bool whole, float leastWeight) const {
        if (whole || !keepsAll_) return keepsAll_;
        return leastWeight > 0.51F && std::all_of(values, values + count, [](std::uint8_t value) {
                   return value == 0 || value == 255;
               });
    }

private:
    Kernel kernel_;
    std::int32_t reach_ = 0;
    Array<float> floats_;
    float margin_ = 0;
    bool keepsAll_ = false; ///< where all taps fall inside
};

/// What a sum at each position of a line is multiplied with: 1, or at the borders the inverse of the weights
/// inside.
struct Inverses {
    Array<float> values; ///< `channels` equal ones a pixel, and kMostLanes more
    float most = 1;

    Inverses(const FastBlur& blur, std::int32_t count, std::int32_t channels)
        : values(static_cast<std::size_t>(count) * static_cast<std::size_t>(channels) + kMostLanes) {
        std::fill(values.begin(), values.end(), 1.0F);
        for (std::int32_t x = 0; values && x < count; ++x) {
            const TapRange range = TapsInside(blur.Taps(), count, x);
            if (range.whole) continue;
            double used = 0;
            for (std::int32_t k = range.first; k < range.last; ++k)
                used += blur.Taps().weights[k];
            const auto inverse = static_cast<float>(1.0 / used);
            most = std::max(most, inverse);
            std::fill_n(values.begin() + std::ptrdiff_t{x} * channels, channels, inverse);
        }
    }
    static constexpr std::size_t kMostLanes = 32;
};

/// Rows of bytes, the pixels of a row side by side.
template <typename Byte>
struct Lines {
    Byte* first;
    std::ptrdiff_t stride;
    std::int32_t width, height, channels;

    Byte* Row(std::int32_t y) const { return first + stride * y; }
    std::int32_t RowBytes() const { return width * channels; }
    operator Lines<const Byte>() const { return {first, stride, width, height, channels}; }
};

LUMAFOLD_IN_CALLER void ToFloats(const std::uint8_t* bytes, float* floats, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i)
        floats[i] = bytes[i];
}

bool AreEqual(const std::uint8_t* bytes, std::int32_t count) {
    return std::memcmp(bytes, bytes + 1, static_cast<std::size_t>(count - 1)) == 0;
}

/// kLanes neighbouring sums around floats at `middle`, a tap every `step`, in four vectors.
template <int kLanes>
LUMAFOLD_IN_CALLER void SumTaps(const FastBlur& blur, const float* middle, std::ptrdiff_t step, float* out) {
    constexpr int kFloats = kLanes / 4;
    using Vector [[gnu::vector_size(kFloats * sizeof(float))]] = float;
    const float* weights = blur.Weights();
    Vector sums[4];
    for (int j = 0; j < 4; ++j) {
        Vector tap;
        std::memcpy(&tap, middle + kFloats * j, sizeof(tap));
        sums[j] = weights[0] * tap;
    }
    const float *before = middle - step, *after = middle + step;
    for (std::int32_t k = 1; k <= blur.Reach(); ++k, before -= step, after += step) {
        for (int j = 0; j < 4; ++j) {
            Vector left, right;
            std::memcpy(&left, before + kFloats * j, sizeof(left));
            std::memcpy(&right, after + kFloats * j, sizeof(right));
            sums[j] += weights[k] * (left + right);
        }
    }
    std::memcpy(out, sums, sizeof(sums));
}

LUMAFOLD_IN_CALLER bool IsOpen(float value, float margin) {
    const float rest = value - static_cast<float>(static_cast<std::int32_t>(value));
    return (rest < margin) | (rest > 1.0F - margin);
}

/// kLanes bytes of the result, of which the first `count` are used: those that the margin leaves open are
/// `exact(lane)`.
template <int kLanes, typename Exact>
LUMAFOLD_IN_CALLER void BlurBlock(const FastBlur& blur, const float* middle, std::ptrdiff_t step,
                                  const float* inverses, float margin, std::uint8_t* out, std::int32_t count,
                                  const Exact& exact) {
    float values[kLanes];
    SumTaps<kLanes>(blur, middle, step, values);
    std::uint8_t levels[kLanes];
    int open = 0;
    for (int i = 0; i < kLanes; ++i) {
        values[i] = (values[i] + 0.5F) * inverses[i];
        open |= static_cast<int>(IsOpen(values[i], margin));
        levels[i] = static_cast<std::uint8_t>(std::min(static_cast<std::int32_t>(values[i]), 255));
    }
    for (std::int32_t i = 0; open != 0 && i < count; ++i) {
        if (IsOpen(values[i], margin)) levels[i] = exact(i);
    }
    std::memcpy(out, levels, static_cast<std::size_t>(count));
}

/// Blurs every row.
struct RowPass {
    const FastBlur& blur;
    Lines<const std::uint8_t> in;
    Lines<std::uint8_t> out;
    const Inverses& inverses;
    float* floats; ///< of one row, with zeros as far as taps and lanes go beyond it

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Run() const {
        const std::int32_t bytes = in.RowBytes(), channels = in.channels, reach = blur.Reach();
        const float borderMargin = 2 * blur.Margin() * inverses.most;
        float* const line = floats + std::ptrdiff_t{reach} * channels;
        for (std::int32_t y = 0; y < in.height; ++y) {
            const std::uint8_t* row = in.Row(y);
            std::uint8_t* target = out.Row(y);
            if (StaysFlat(row, 0, bytes)) {
                std::memcpy(target, row, static_cast<std::size_t>(bytes));
                continue;
            }
            ToFloats(row, line, bytes);
            for (std::int32_t i = 0; i < bytes; i += kLanes) {
                const std::int32_t count = std::min(kLanes, bytes - i);
                if (StaysFlat(row, i, count)) {
                    std::memcpy(target + i, row + i, static_cast<std::size_t>(count));
                    continue;
                }
                const bool whole = blur.IsWhole(i / channels, (i + count - 1) / channels, in.width);
                BlurBlock<kLanes>(
                    blur, line + i, channels, &inverses.values[static_cast<std::size_t>(i)],
                    whole ? blur.Margin() : borderMargin, target + i, count, [&](std::int32_t lane) {
                        const std::int32_t at = i + lane;
                        return ExactByte(blur.Taps(), row + at % channels, channels, in.width, at / channels);
                    });
            }
        }
    }

    /// Only looked for in one channel, since masks are mostly flat.
    bool StaysFlat(const std::uint8_t* row, std::int32_t first, std::int32_t count) const {
        if (in.channels != 1) return false;
        const std::int32_t from = std::max(first - blur.Reach(), 0),
                           to = std::min(first + count + blur.Reach(), in.width);
        return AreEqual(row + from, to - from) &&
               blur.Keeps(row + first, 1, blur.IsWhole(first, first + count - 1, in.width),
                          1 / inverses.most);
    }
};

/// Blurs every column, kLanes bytes side by side at once. They are held as floats so that the window slides
/// down within the nearest cache.
struct ColumnPass {
    const FastBlur& blur;
    Lines<const std::uint8_t> in;
    Lines<std::uint8_t> out;
    const Inverses& inverses;
    float* floats; ///< of Inverses::kMostLanes columns, with rows of zeros as far as taps go beyond them

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Run() const {
        for (std::int32_t i = 0; i < in.RowBytes(); i += kLanes)
            Strip<kLanes>(i, std::min(kLanes, in.RowBytes() - i));
    }

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Strip(std::int32_t first, std::int32_t count) const {
        const std::int32_t reach = blur.Reach();
        std::int32_t converted = 0, entered = 0, equal = 0;
        for (std::int32_t y = 0; y < in.height; ++y) {
            const bool whole = blur.IsWhole(y, y, in.height);
            const std::int32_t top = std::max(y - reach, 0), end = std::min(y + reach + 1, in.height);
            for (; entered < end; ++entered)
                equal = entered > 0 && IsAsAbove(in.Row(entered) + first, count) ? equal + 1 : 1;
            if (equal >= end - top && blur.Keeps(in.Row(y) + first, count, whole, 1 / inverses.most)) {
                std::memcpy(out.Row(y) + first, in.Row(y) + first, static_cast<std::size_t>(count));
                continue;
            }
            for (converted = std::max(converted, top); converted < end; ++converted)
                ToFloats(in.Row(converted) + first, floats + std::ptrdiff_t{reach + converted} * kLanes,
                         count);
            float border[kLanes];
            std::fill(border, border + kLanes, inverses.values[static_cast<std::size_t>(y)]);
            BlurBlock<kLanes>(blur, floats + std::ptrdiff_t{reach + y} * kLanes, kLanes, border,
                              whole ? blur.Margin() : 2 * blur.Margin() * border[0], out.Row(y) + first,
                              count, [&](std::int32_t lane) {
                                  return ExactByte(blur.Taps(), in.first + first + lane, in.stride, in.height,
                                                   y);
                              });
        }
    }

    /// Only looked for in one channel.
    bool IsAsAbove(const std::uint8_t* bytes, std::int32_t count) const {
        return in.channels == 1 &&
               std::memcmp(bytes, bytes - in.stride, static_cast<std::size_t>(count)) == 0;
    }
};

/// Both passes; false when memory is short.
bool BlurLines(const FastBlur& blur, const Lines<const std::uint8_t>& in, const Lines<std::uint8_t>& out) {
    const auto bytes = static_cast<std::size_t>(in.RowBytes()), rows = static_cast<std::size_t>(in.height),
               reach = static_cast<std::size_t>(blur.Reach()),
               channels = static_cast<std::size_t>(in.channels);
    // For the tallest pictures this needs more than 32 bits; no array is as long as SIZE_MAX.
    const std::uint64_t stripFloats = (std::uint64_t{rows} + 2 * reach) * Inverses::kMostLanes;
    Array<std::uint8_t> between(bytes * rows);
    const Inverses across(blur, in.width, in.channels), down(blur, in.height, 1);
    Array<float> line(bytes + 2 * reach * channels + Inverses::kMostLanes),
        strip(static_cast<std::size_t>(std::min<std::uint64_t>(stripFloats, SIZE_MAX)));
    if (!between || !across.values || !down.values || !line || !strip) return false;
    const Lines<std::uint8_t> middle{between.data(), in.RowBytes(), in.width, in.height, in.channels};
    WithWidestLanes(RowPass{blur, in, middle, across, line.data()});
    WithWidestLanes(ColumnPass{blur, middle, out, down, strip.data()});
    return true;
}

/// Radius and sigma in tenths of a pixel. None is a kernel that cannot be had, which leaves no taps.
Array<double> KernelOf(std::int32_t radius, std::int32_t sigma) {
    const double taps = 2 * std::ceil(radius * 0.1) + 1;
    return GaussianKernel(taps > kMostTaps ? INT32_MAX : static_cast<std::int32_t>(taps), sigma * 0.1);
}

} // namespace

Array<double> GaussianKernel(std::int32_t taps, double sigma) {
    if (taps < 1) taps = 3;
    Array<double> weights(taps > kMostTaps ? SIZE_MAX : static_cast<std::size_t>(taps));
    if (!weights) return weights;
    const ExtendedPrecision precision;
    const long double spread = Extended(Extended(18.0L * sigma) * sigma);
    // Three samples a tap, a third of a pixel apart: hence the nine in the spread. Beyond `reach` all are 0.
    const std::int64_t half = std::int64_t{3} * taps / 2;
    const auto reach = static_cast<std::int64_t>(std::min<long double>(
        static_cast<long double>(half), std::sqrt(static_cast<double>(spread) * 750.0) + 1));
    for (std::int64_t i = -reach; i <= reach; ++i) {
        const double sample = PortableExp(Extended(static_cast<long double>(-(i * i)) / spread));
        double& weight = weights[static_cast<std::size_t>((i + half) / 3)];
        weight = static_cast<double>(Extended(static_cast<long double>(weight) + sample));
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
    OwnedDib result = DibCreate(picture.biWidth, picture.biHeight, nullptr, 24);
    const Array<double> weights = KernelOf(radius, sigma);
    // Without taps the passes would give black, which a new picture is.
    if (!result || !weights || picture.biWidth < 1 || picture.biHeight < 1) return result;
    const FastBlur blur(weights);
    const ConstRowView from(picture);
    const RowView to = result.Rows();
    const std::int32_t width = from.Width(), height = from.Height();
    if (!blur || !BlurLines(blur, {from.Row(0), -from.Stride(), width, height, 3},
                            {to.Row(0), -to.Stride(), width, height, 3}))
        return {};
    return result;
}

Mask MaskGaussianBlur(const Mask& mask, std::int32_t radius, std::int32_t sigma) {
    const std::int32_t width = mask.Width(), height = mask.Height();
    Mask result(width, height);
    const Array<double> weights = KernelOf(radius, sigma);
    if (!result || !weights) return result;
    const FastBlur blur(weights);
    if (!blur ||
        !BlurLines(blur, {mask.Row(0), width, width, height, 1}, {result.Row(0), width, width, height, 1}))
        return {};
    return result;
}

} // namespace lumafold
