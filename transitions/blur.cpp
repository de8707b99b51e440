// The Gaussian blur. BlurRow is its definition, in doubles, tap by tap. The passes over a whole mask work in
// floats, many pixels at once, with a bound on their error: a value too near a step to be sure of is computed
// again by the definition, so every byte is the definition's. Where all taps see one value, as they do nearly
// everywhere in a mask, nothing is summed.
#include <cmath>

#include "numbers/portable_math.h"
#include "platform/simd.h"
#include "transitions/compositing.h"

namespace lumafold {
namespace {

/// More taps than this count as a kernel that cannot be had: 2 GB of weights, the room of a 32-bit process.
constexpr std::int32_t kMostTaps = (1 << 28) - 1;
/// Pixels that a pass works on at once, at the most.
constexpr std::size_t kMostLanes = 32;

/// The taps of a kernel that fall inside a line, as distances from the pixel; `last` is included.
struct TapRange {
    std::int32_t first, last;
};

/// A kernel's weights as seen from the middle one, and how far its taps go to either side.
struct Kernel {
    const double* middle;
    std::int32_t half;
    std::int32_t reach; ///< the farthest tap that weighs anything, at most `half`; -1 where there is none

    /// `weights` are those in the middle of a kernel that goes as far as `half`; they outlive this.
    Kernel(const Array<double>& weights, std::int32_t tapsAside)
        : middle(weights.data() + weights.size() / 2), half(tapsAside),
          reach(weights ? static_cast<std::int32_t>(weights.size() / 2) : -1) {
        while (reach > 0 && middle[reach] == 0) {
            --reach;
        }
    }

    /// Whether all taps fall inside a line of `count` pixels around those from `first` to `last`.
    bool IsWhole(std::int32_t first, std::int32_t last, std::int32_t count) const {
        return first >= half && last < count - half;
    }
    TapRange Inside(std::int32_t x, std::int32_t count) const {
        return {std::max(-reach, -x), std::min(reach, count - 1 - x)};
    }
};

/// One byte of the result by the definition. `line` is that byte in the line's first pixel, `step` the way
/// on.
std::uint8_t ExactByte(const Kernel& kernel, const std::uint8_t* line, std::ptrdiff_t step,
                       std::int32_t count, std::int32_t x) {
    const TapRange taps = kernel.Inside(x, count);
    const std::uint8_t* tap = line + step * (x + taps.first);
    double sum = 0, used = 0;
    for (std::int32_t k = taps.first; k <= taps.last; ++k, tap += step) {
        sum += kernel.middle[k] * *tap;
        used += kernel.middle[k];
    }
    // At the borders half a level is added before the division, not after it (docs/quirks.md 10). It must not
    // pass white.
    const double value = kernel.IsWhole(x, x, count) ? sum + 0.5 : (sum + 0.5) / used;
    return static_cast<std::uint8_t>(std::min(static_cast<int>(value), 255));
}

/// What is blurred in place: the rows of a mask, or of a picture with three bytes a pixel, which are blurred
/// each by itself.
struct Lines {
    std::uint8_t* top;
    std::ptrdiff_t below;             ///< from a row to the next
    std::int32_t width, height, step; ///< in pixels; bytes of a pixel

    std::uint8_t* Row(std::int32_t y) const { return top + below * y; }
    std::int32_t Bytes() const { return width * step; }
};

/// What the passes share: the kernel in floats, and how far a float sum may be from the definition's. Weights
/// at the same distance before and behind the middle are the same sum of samples, so two taps take one
/// multiplication.
struct FastKernel {
    Kernel exact;
    Array<float> weights; ///< of the middle tap, and of those at distances from 1 to the reach
    float margin;         ///< of the sums, in levels, where all taps fall inside
    bool keepsAll = true; ///< whether values that all taps see come out as they are, inside

    /// Check it before use.
    explicit FastKernel(const Kernel& kernel)
        : exact(kernel), weights(static_cast<std::size_t>(kernel.reach) + 1),
          margin(static_cast<float>(kernel.reach + 9) * 256.0F * 0x1p-24F) {
        for (std::size_t k = 0; k < weights.size(); ++k)
            weights[k] = static_cast<float>(kernel.middle[k]);
        for (int v = 0; v < 256; ++v) {
            double level = 0;
            for (std::int32_t k = -kernel.reach; k <= kernel.reach; ++k)
                level += kernel.middle[k] * v;
            level += 0.5;
            keepsAll = keepsAll && static_cast<int>(level) == v;
        }
    }
    explicit operator bool() const { return static_cast<bool>(weights); }

    /// Whether these values come out as they are where all taps see them. At the border, where up to half a
    /// level over the weight inside is added, black and white do: nothing passes white.
    bool Keeps(const std::uint8_t* values, std::int32_t count, bool whole, float leastWeight) const {
        if (whole || !keepsAll) return keepsAll;
        return leastWeight > 0.51F && std::all_of(values, values + count, [](std::uint8_t value) {
                   return value == 0 || value == 255;
               });
    }
};

/// What a sum at each byte of a line is multiplied with: 1, or at the borders the inverse of the weights
/// inside.
struct Inverses {
    Array<float> values; ///< and kMostLanes more
    float most = 1;

    /// For a line of `count` pixels of `step` bytes.
    Inverses(const Kernel& kernel, std::int32_t count, std::int32_t step)
        : values(static_cast<std::size_t>(count) * static_cast<std::size_t>(step) + kMostLanes) {
        std::fill(values.begin(), values.end(), 1.0F);
        for (std::int32_t x = 0; values && x < count; ++x) {
            if (kernel.IsWhole(x, x, count)) continue;
            const TapRange taps = kernel.Inside(x, count);
            double used = 0;
            for (std::int32_t k = taps.first; k <= taps.last; ++k)
                used += kernel.middle[k];
            const auto inverse = static_cast<float>(1.0 / used);
            most = std::max(most, inverse);
            std::fill_n(values.begin() + std::ptrdiff_t{x} * step, step, inverse);
        }
    }
};

LUMAFOLD_IN_CALLER void ToFloats(const std::uint8_t* bytes, float* floats, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i)
        floats[i] = bytes[i];
}

/// kLanes neighbouring sums around floats at `middle`, a tap every `step`, in four vectors.
template <int kLanes>
LUMAFOLD_IN_CALLER void SumTaps(const FastKernel& kernel, const float* middle, std::ptrdiff_t step,
                                float* out) {
    constexpr int kFloats = kLanes / 4;
    using Vector [[gnu::vector_size(kFloats * sizeof(float))]] = float;
    const float* weights = kernel.weights.data();
    Vector sums[4];
    for (int j = 0; j < 4; ++j) {
        Vector tap;
        std::memcpy(&tap, middle + kFloats * j, sizeof(tap));
        sums[j] = weights[0] * tap;
    }
    const float *before = middle - step, *after = middle + step;
    for (std::int32_t k = 1; k <= kernel.exact.reach; ++k, before -= step, after += step) {
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
LUMAFOLD_IN_CALLER void BlurBlock(const FastKernel& kernel, const float* middle, std::ptrdiff_t step,
                                  const float* inverses, float margin, std::uint8_t* out, std::int32_t count,
                                  const Exact& exact) {
    float values[kLanes];
    SumTaps<kLanes>(kernel, middle, step, values);
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

/// Blurs every row in place.
struct RowPass {
    const FastKernel& kernel;
    const Lines& lines;
    const Inverses& inverses;
    std::uint8_t* copy; ///< of a row as it was
    float* line;        ///< the same, with zeros before and behind as far as taps and lanes go beyond it

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Run() const {
        const std::int32_t bytes = lines.Bytes(), step = lines.step;
        const float borderMargin = 2 * kernel.margin * inverses.most;
        for (std::int32_t y = 0; y < lines.height; ++y) {
            std::uint8_t* row = lines.Row(y);
            if (StaysFlat(row, 0, bytes)) continue;
            std::memcpy(copy, row, static_cast<std::size_t>(bytes));
            ToFloats(copy, line, bytes);
            for (std::int32_t i = 0; i < bytes; i += kLanes) {
                const std::int32_t count = std::min(kLanes, bytes - i);
                if (StaysFlat(copy, i, count)) continue;
                BlurBlock<kLanes>(
                    kernel, line + i, step, &inverses.values[static_cast<std::size_t>(i)],
                    IsWhole(i, count) ? kernel.margin : borderMargin, row + i, count, [&](std::int32_t lane) {
                        const std::int32_t x = (i + lane) / step;
                        return ExactByte(kernel.exact, copy + (i + lane - x * step), step, lines.width, x);
                    });
            }
        }
    }

    bool IsWhole(std::int32_t first, std::int32_t count) const {
        return kernel.exact.IsWhole(first / lines.step, (first + count - 1) / lines.step, lines.width);
    }
    /// Whether all taps of `count` bytes see the value that is there, and it comes out as it is.
    bool StaysFlat(const std::uint8_t* row, std::int32_t first, std::int32_t count) const {
        const std::int64_t step = lines.step, reach = kernel.exact.reach * step;
        const std::int64_t from = std::max<std::int64_t>(first - reach, 0),
                           to = std::min<std::int64_t>(first + count + reach, lines.Bytes());
        if (to - from > step &&
            std::memcmp(row + from, row + from + step, static_cast<std::size_t>(to - from - step)) != 0)
            return false;
        return kernel.Keeps(row + first, std::min(count, lines.step), IsWhole(first, count),
                            1 / inverses.most);
    }
};

/// Blurs every column in place, kLanes bytes side by side at once. They are held as floats so that the window
/// slides down within the nearest cache.
struct ColumnPass {
    const FastKernel& kernel;
    const Lines& lines;
    const Inverses& inverses;
    std::uint8_t* copy; ///< of kMostLanes columns as they were
    float* strip;       ///< the same, with rows of zeros as far as taps go beyond them

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Run() const {
        for (std::int32_t i = 0; i < lines.Bytes(); i += kLanes)
            Strip<kLanes>(i, std::min(kLanes, lines.Bytes() - i));
    }

    template <int kLanes>
    LUMAFOLD_IN_CALLER void Strip(std::int32_t first, std::int32_t count) const {
        const std::int32_t reach = kernel.exact.reach, height = lines.height;
        std::int32_t converted = 0, entered = 0, equal = 0;
        for (std::int32_t y = 0; y < height; ++y) {
            const std::uint8_t* row = copy + std::ptrdiff_t{y} * kLanes;
            const bool whole = kernel.exact.IsWhole(y, y, height);
            const std::int32_t top = std::max(y - reach, 0), end = std::min(y + reach + 1, height);
            for (; entered < end; ++entered)
                equal = Enter<kLanes>(lines.Row(entered) + first, entered, count) ? equal + 1 : 1;
            if (equal >= end - top && kernel.Keeps(row, count, whole, 1 / inverses.most)) continue;
            for (converted = std::max(converted, top); converted < end; ++converted)
                ToFloats(copy + std::ptrdiff_t{converted} * kLanes,
                         strip + std::ptrdiff_t{reach + converted} * kLanes, kLanes);
            float border[kLanes];
            std::fill(border, border + kLanes, inverses.values[static_cast<std::size_t>(y)]);
            BlurBlock<kLanes>(
                kernel, strip + std::ptrdiff_t{reach + y} * kLanes, kLanes, border,
                whole ? kernel.margin : 2 * kernel.margin * border[0], lines.Row(y) + first, count,
                [&](std::int32_t lane) { return ExactByte(kernel.exact, copy + lane, kLanes, height, y); });
        }
    }

    /// Copies row y of the strip; whether it is as the one above.
    template <int kLanes>
    LUMAFOLD_IN_CALLER bool Enter(const std::uint8_t* bytes, std::int32_t y, std::int32_t count) const {
        std::uint8_t* row = copy + std::ptrdiff_t{y} * kLanes;
        if (count == kLanes) {
            std::memcpy(row, bytes, kLanes);
        } else {
            std::memcpy(row, bytes, static_cast<std::size_t>(count));
        }
        return y > 0 && std::memcmp(row, row - kLanes, static_cast<std::size_t>(count)) == 0;
    }
};

/// Both passes; false when memory is short.
bool Blur(const Lines& lines, const Kernel& exact) {
    const FastKernel kernel(exact);
    const auto bytes = static_cast<std::size_t>(lines.Bytes()),
               height = static_cast<std::size_t>(lines.height), reach = static_cast<std::size_t>(exact.reach);
    // For the tallest pictures this needs more than 32 bits; no array is as long as SIZE_MAX.
    const auto lanes = [](std::uint64_t rows) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(rows * kMostLanes, SIZE_MAX));
    };
    const Inverses across(exact, lines.width, lines.step), down(exact, lines.height, 1);
    const std::size_t before = reach * static_cast<std::size_t>(lines.step);
    Array<std::uint8_t> row(bytes), columns(lanes(height));
    Array<float> line(bytes + 2 * before + kMostLanes), strip(lanes(std::uint64_t{height} + 2 * reach));
    if (!kernel || !across.values || !down.values || !row || !columns || !line || !strip) return false;
    WithWidestLanes(RowPass{kernel, lines, across, row.data(), line.data() + before});
    WithWidestLanes(ColumnPass{kernel, lines, down, columns.data(), strip.data()});
    return true;
}

/// A blur's kernel without its outer taps that weigh nothing.
struct BlurWeights {
    Array<double> weights; ///< none: a kernel that cannot be had
    std::int32_t half = 0; ///< how far the taps go to either side, those without weight included

    /// Radius and sigma in tenths of a pixel.
    BlurWeights(std::int32_t radius, std::int32_t sigma) {
        double taps = 2 * std::ceil(radius * 0.1) + 1;
        if (taps < 1) taps = 3;
        if (taps > kMostTaps) return;
        half = static_cast<std::int32_t>(taps) / 2;
        const double pixels = sigma * 0.1;
        // From 39 sigma on all are 0.
        const double weighing = std::ceil(39 * std::abs(pixels)) + 1;
        weights = GaussianKernel(static_cast<std::int32_t>(std::min(taps, 2 * weighing + 1)), pixels);
    }
};

} // namespace

Array<double> GaussianKernel(std::int32_t taps, double sigma) {
    if (taps < 1) taps = 3;
    if (taps > kMostTaps) return {};
    Array<double> weights(static_cast<std::size_t>(taps));
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
    const Kernel kernel(weights, static_cast<std::int32_t>(weights.size() / 2));
    for (std::int32_t i = 0; i < count * 3; ++i) {
        target[i] = ExactByte(kernel, source + i % 3, 3, count, i / 3);
    }
}

OwnedDib DibGaussianBlur(const DibHeader& picture, std::int32_t radius, std::int32_t sigma) {
    if (picture.biBitCount != 24) return {};
    OwnedDib result = DibCreate(picture.biWidth, picture.biHeight, nullptr, 24);
    if (!result || picture.biWidth < 1 || picture.biHeight < 1) return result;
    const BlurWeights blur(radius, sigma);
    // Without taps the passes would give black, which a new picture is.
    if (!blur.weights) return result;
    const RowView rows = result.Rows();
    for (std::int32_t y = 0; y < rows.Height(); ++y)
        std::memcpy(rows.Row(y), ConstRowView(picture).Row(y), rows.RowBytes());
    const Lines lines{rows.Row(0), -rows.Stride(), rows.Width(), rows.Height(), 3};
    return Blur(lines, Kernel(blur.weights, blur.half)) ? std::move(result) : OwnedDib();
}

Mask MaskGaussianBlur(Mask mask, std::int32_t radius, std::int32_t sigma) {
    const BlurWeights blur(radius, sigma);
    if (!blur.weights) return {mask.Width(), mask.Height()};
    const Lines lines{mask.Row(0), mask.Width(), mask.Width(), mask.Height(), 1};
    return Blur(lines, Kernel(blur.weights, blur.half)) ? std::move(mask) : Mask();
}

} // namespace lumafold
