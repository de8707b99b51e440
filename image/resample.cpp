#include "image/resample.h"

#include "image/colour_rows.h"

namespace lumafold {
namespace {

enum class Axis { Width, Height };

/// How many positions a picture has along the axis.
std::int32_t LengthOf(const DibHeader& dib, Axis axis) {
    return axis == Axis::Width ? dib.biWidth : dib.biHeight;
}

/// Position `to` of a stretched line is weightA * (source a) / of + weightB * (source b) / of, both
/// truncated. Where a is b, it is a copy.
struct Mix {
    std::int64_t to, a, b, weightA, weightB, of;
};

/// Linear interpolation of a line. Calls `write(mix)` in order: where a position comes twice, the later one
/// counts. The height pass looks one pixel beyond the source, where all is white (docs/quirks.md 1).
template <typename Write>
void ForEachMix(Axis axis, std::int64_t length, std::int64_t newLength, std::int64_t percent, Write write) {
    if (length < 1 || newLength < 1) return;
    const std::int64_t inflated = percent + percent / 100 + (percent % 100 != 0 ? 1 : 0);
    const auto copy = [&](std::int64_t to, std::int64_t from) {
        if (to < newLength && from < length) write(Mix{to, from, from, 0, 1, 1});
    };
    copy(0, 0);
    const std::int64_t last = axis == Axis::Width ? length - 1 : length;
    for (std::int64_t i = 1, previous = 0; i <= last; ++i) {
        const std::int64_t position = i * inflated / 100, n = position - previous;
        for (std::int64_t k = 0; k < n && previous + k < newLength; ++k)
            write(Mix{previous + k, i - 1, i, n - k - 1, k + 1, n});
        copy(position, i);
        previous = position;
    }
    copy(newLength - 1, length - 1);
}

/// The source positions that each position of a shrunken line averages: up to here, from where the one before
/// it ended. At least one is taken, since the percentage is below 100.
struct Box {
    std::int64_t begin, end;
};
Box BoxOf(std::int64_t position, std::int64_t length, std::int64_t percent) {
    return {std::min(position * 100 / percent, length), std::min((position + 1) * 100 / percent, length)};
}

/// A line of a picture of any depth, a row or a column, through the accessors. Of 2 to 8 bits the stored
/// values themselves are calculated with, no pixel being -1; otherwise three channels.
template <typename Header>
class Line {
public:
    using Parts = std::array<std::int64_t, 3>;

    Line(Header& dib, Axis axis, std::int32_t at)
        : dib_(dib), axis_(axis), at_(at), whole_(dib.biBitCount >= 2 && dib.biBitCount <= 8) {}

    PixelValue Value(std::int64_t i) const {
        return axis_ == Axis::Width ? DibGetPixel(dib_, i, at_) : DibGetPixel(dib_, at_, i);
    }
    Parts Get(std::int64_t i) const {
        const PixelValue v = Value(i);
        if (whole_) return {static_cast<std::int32_t>(v)};
        return {RedOf(v), GreenOf(v), BlueOf(v)};
    }
    void SetMix(const Line<const DibHeader>& from, const Mix& mix) {
        if (mix.a == mix.b && from.Value(mix.a) == kNoPixel) return;
        Parts a = from.Get(mix.a);
        const Parts b = from.Get(mix.b);
        for (std::size_t c = 0; c < 3; ++c)
            a[c] = mix.weightA * a[c] / mix.of + mix.weightB * b[c] / mix.of;
        Set(mix.to, a);
    }
    void SetMean(std::int64_t to, const Line<const DibHeader>& from, const Box& box) {
        Parts sums{};
        for (std::int64_t i = box.begin; i < box.end; ++i) {
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] += from.Get(i)[c];
        }
        const std::int64_t count = std::max<std::int64_t>(box.end - box.begin, 1);
        for (std::int64_t& sum : sums)
            sum /= count;
        Set(to, sums);
    }

private:
    void Set(std::int64_t i, const Parts& parts) {
        const auto part = [&](std::size_t c) { return static_cast<PixelValue>(parts[c]); };
        const PixelValue v = whole_ ? part(0) : MakeColour(part(0), part(1), part(2));
        axis_ == Axis::Width ? DibSetPixel(dib_, i, at_, v) : DibSetPixel(dib_, at_, i, v);
    }

    Header& dib_;
    Axis axis_;
    std::int32_t at_;
    bool whole_;
};

void ResampleLines(const DibHeader& source, DibHeader& target, std::int32_t percent, Axis axis) {
    const std::int32_t lines = LengthOf(source, axis == Axis::Width ? Axis::Height : Axis::Width);
    for (std::int32_t at = 0; at < lines; ++at) {
        const Line<const DibHeader> from(source, axis, at);
        Line<DibHeader> to(target, axis, at);
        if (percent > 100) {
            ForEachMix(axis, LengthOf(source, axis), LengthOf(target, axis), percent,
                       [&](const Mix& mix) { to.SetMix(from, mix); });
        } else {
            for (std::int32_t i = 0; i < LengthOf(target, axis); ++i)
                to.SetMean(i, from, BoxOf(i, LengthOf(source, axis), percent));
        }
    }
}

/// A share of 1 / count in 2^24ths, a little above: (x * share) >> 24 is x / count, truncated, for x up to
/// 255 x count and counts up to 256, and stays within 32 bits.
constexpr int kShareBits = 24;
constexpr std::uint32_t ShareOf(std::int64_t count) {
    return static_cast<std::uint32_t>((1 << kShareBits) / count + 1);
}
/// Up to here no mix and no box of a 24-bit picture has more parts than that.
constexpr std::int32_t kMostQuickPercent = 20000;

/// The mix of one position, in shares.
struct QuickMix {
    std::int32_t a, b;
    std::uint32_t shareA, shareB;

    std::uint8_t operator()(std::uint8_t levelA, std::uint8_t levelB) const {
        return static_cast<std::uint8_t>((levelA * shareA >> kShareBits) + (levelB * shareB >> kShareBits));
    }
};

/// False when memory is short.
bool StretchQuickly(const DibHeader& source, DibHeader& target, std::int64_t percent, Axis axis) {
    const ConstRowView from(source);
    const RowView to(target);
    Array<QuickMix> mixes(static_cast<std::size_t>(LengthOf(target, axis)));
    Array<std::uint8_t> white(to.RowBytes());
    if (!mixes || !white) return false;
    std::memset(white.data(), 0xFF, white.size());
    ForEachMix(axis, LengthOf(source, axis), LengthOf(target, axis), percent, [&](const Mix& mix) {
        const std::uint32_t share = ShareOf(mix.of);
        mixes[static_cast<std::size_t>(mix.to)] = {
            static_cast<std::int32_t>(mix.a), static_cast<std::int32_t>(mix.b),
            static_cast<std::uint32_t>(mix.weightA) * share, static_cast<std::uint32_t>(mix.weightB) * share};
    });
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        std::uint8_t* out = to.Row(y);
        if (axis == Axis::Width) {
            const std::uint8_t* row = from.Row(y);
            for (const QuickMix& mix : mixes) {
                for (int c = 0; c < 3; ++c)
                    *out++ = mix(row[3 * mix.a + c], row[3 * mix.b + c]);
            }
        } else {
            const QuickMix mix = mixes[static_cast<std::size_t>(y)];
            const std::uint8_t* a = from.Row(mix.a);
            const std::uint8_t* b = mix.b < from.Height() ? from.Row(mix.b) : white.data();
            for (std::size_t i = 0; i < to.RowBytes(); ++i)
                out[i] = mix(a[i], b[i]);
        }
    }
    return true;
}

/// Shrinking to half takes exactly two pixels each; this is the mask's way to its size, and its share of the
/// time. Its inner loop is so short that its place in a cache line decides a sixth of it, hence the
/// alignment.
[[gnu::noinline, gnu::aligned(64)]] void Halve(const DibHeader& source, DibHeader& target, Axis axis) {
    const ConstRowView from(source);
    const RowView to(target);
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        std::uint8_t* __restrict out = to.Row(y);
        if (axis == Axis::Width) {
            const std::uint8_t* s = from.Row(y);
            for (std::int32_t x = 0; x < to.Width(); ++x, s += 6, out += 3) {
                std::uint32_t a, b; // the means of three bytes at once
                std::memcpy(&a, s, 4);
                std::memcpy(&b, s + 2, 4);
                b >>= 8;
                const std::uint32_t means = (a & b) + (((a ^ b) & 0xFEFEFE) >> 1);
                std::memcpy(out, &means, 3);
            }
        } else {
            const std::uint8_t *upper = from.Row(2 * y), *lower = from.Row(2 * y + 1);
            for (std::size_t i = 0; i < to.RowBytes(); ++i)
                out[i] = static_cast<std::uint8_t>((upper[i] + lower[i]) / 2);
        }
    }
}

void ShrinkWidthQuickly(const DibHeader& source, DibHeader& target, std::int64_t percent) {
    const ConstRowView from(source);
    const RowView to(target);
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        const std::uint8_t* s = from.Row(y);
        std::uint8_t* d = to.Row(y);
        for (std::int32_t x = 0; x < to.Width(); ++x, d += 3) {
            const Box box = BoxOf(x, from.Width(), percent);
            std::uint32_t sums[3] = {};
            for (std::int64_t i = box.begin; i < box.end; ++i, s += 3) {
                for (int c = 0; c < 3; ++c)
                    sums[c] += s[c];
            }
            const std::uint32_t share = ShareOf(box.end - box.begin);
            for (int c = 0; c < 3; ++c)
                d[c] = static_cast<std::uint8_t>(sums[c] * share >> kShareBits);
        }
    }
}

void ShrinkHeightQuickly(const DibHeader& source, DibHeader& target, std::int64_t percent) {
    constexpr std::size_t kBlock = 256; // bytes of a row that are summed together, in the nearest cache
    const ConstRowView from(source);
    const RowView to(target);
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        const Box box = BoxOf(y, from.Height(), percent);
        const std::uint32_t share = ShareOf(box.end - box.begin);
        for (std::size_t first = 0; first < to.RowBytes(); first += kBlock) {
            const std::size_t count = std::min(kBlock, to.RowBytes() - first);
            std::uint32_t sums[kBlock] = {};
            for (std::int64_t row = box.begin; row < box.end; ++row) {
                const std::uint8_t* s = from.Row(row) + first;
                for (std::size_t i = 0; i < count; ++i)
                    sums[i] += s[i];
            }
            std::uint8_t* d = to.Row(y) + first;
            for (std::size_t i = 0; i < count; ++i)
                d[i] = static_cast<std::uint8_t>(sums[i] * share >> kShareBits);
        }
    }
}

/// Stretches above 100 percent and shrinks below.
OwnedDib Resample(const DibHeader& source, std::int32_t percent, Axis axis) {
    if (percent == 100) return DibCopy(source);
    const bool wide = axis == Axis::Width;
    const std::int64_t size = std::int64_t{LengthOf(source, axis)} * percent / 100;
    OwnedDib target = DibCreateLike(source, wide ? size : source.biWidth, wide ? source.biHeight : size);
    if (!target) return target;
    if (source.biBitCount != 24 || percent > kMostQuickPercent) {
        ResampleLines(source, *target, percent, axis);
    } else if (percent > 100) {
        if (!StretchQuickly(source, *target, percent, axis)) return {};
    } else if (percent == 50) {
        Halve(source, *target, axis);
    } else {
        wide ? ShrinkWidthQuickly(source, *target, percent) : ShrinkHeightQuickly(source, *target, percent);
    }
    return target;
}

} // namespace

OwnedDib DibToTrueColour(const DibHeader& source) {
    if (source.biBitCount != DibRoundBitDepth(source.biBitCount)) return {};
    OwnedDib target = DibCreate(source.biWidth, source.biHeight, nullptr, 24);
    if (!target || target->biWidth == 0) return target;
    ColourRows from(source);
    if (!from) return {};
    const RowView to = target.Rows();
    // Deeper than 24 bits the row is still taken as it stands, three bytes a pixel.
    for (std::int32_t y = 0; y < to.Height(); ++y)
        std::memcpy(to.Row(y), from.Row(y), to.RowBytes());
    return target;
}

OwnedDib DibStretchWidth(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Axis::Width);
}
OwnedDib DibShrinkWidth(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Axis::Width);
}
OwnedDib DibStretchHeight(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Axis::Height);
}
OwnedDib DibShrinkHeight(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Axis::Height);
}

OwnedDib DibScale(const DibHeader& source, std::int32_t percentX, std::int32_t percentY) {
    const OwnedDib widened = Resample(source, percentX, Axis::Width);
    return widened ? Resample(*widened, percentY, Axis::Height) : OwnedDib();
}

OwnedDib DibCropRect(const DibHeader& source, const Rect& rect, PixelValue fill) {
    OwnedDib target =
        DibCreateLike(source, std::int64_t{rect.right} - rect.left, std::int64_t{rect.bottom} - rect.top);
    if (!target) return target;
    const bool inside =
        rect.left >= 0 && rect.top >= 0 && rect.right <= source.biWidth && rect.bottom <= source.biHeight;
    // New pixels are zero, so a fill of 0 needs no writing. At 32 bits a pixel may have the value of none.
    if (fill != 0 && (!inside || source.biBitCount == 32)) {
        for (std::int32_t y = 0; y < target->biHeight; ++y) {
            for (std::int32_t x = 0; x < target->biWidth; ++x)
                DibSetPixel(*target, x, y, fill);
        }
    }
    DibCopyRect(*target, 0, 0, source, rect.left, rect.top, target->biWidth, target->biHeight);
    return target;
}

std::int32_t FitPercent(std::int32_t width, std::int32_t height, std::int32_t boxWidth,
                        std::int32_t boxHeight) {
    if (width < 1 || height < 1) return 100;
    const std::int64_t percent =
        std::min(std::int64_t{boxWidth} * 100 / width, std::int64_t{boxHeight} * 100 / height);
    return static_cast<std::int32_t>(std::min<std::int64_t>(percent, 100));
}

std::int32_t FitOffset(std::int32_t room, std::int32_t size) { return std::max(0, (room - size) / 2); }

} // namespace lumafold
