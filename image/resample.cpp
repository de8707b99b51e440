#include "image/resample.h"

#include "image/index_rows.h"

namespace lumafold {
namespace {

enum class Axis { Width, Height };

/// A line of a picture, a row or a column, walked in three channels. Any depth, through the accessors.
class ChannelLine {
public:
    struct Value {
        std::int64_t channels[3];
        bool none;
    };

    template <typename Header>
    ChannelLine(Header& dib, Axis axis, std::int32_t at)
        : dib_(const_cast<DibHeader&>(dib)), axis_(axis), at_(at) {}

    Value Get(std::int64_t index) const {
        const auto i = static_cast<std::int32_t>(index);
        const PixelValue v = axis_ == Axis::Width ? DibGetPixel(dib_, i, at_) : DibGetPixel(dib_, at_, i);
        return {{RedOf(v), GreenOf(v), BlueOf(v)}, v == kNoPixel};
    }
    void Set(std::int64_t index, const Value& value) {
        if (value.none) return;
        const PixelValue v =
            MakeColour(static_cast<unsigned>(value.channels[0]), static_cast<unsigned>(value.channels[1]),
                       static_cast<unsigned>(value.channels[2]));
        const auto i = static_cast<std::int32_t>(index);
        if (axis_ == Axis::Width) {
            DibSetPixel(dib_, i, at_, v);
        } else {
            DibSetPixel(dib_, at_, i, v);
        }
    }
    template <typename Operation>
    static Value Combine(const Value& a, const Value& b, Operation operation) {
        Value result{{}, false};
        for (int c = 0; c < 3; ++c) {
            result.channels[c] = operation(a.channels[c], b.channels[c]);
        }
        return result;
    }

private:
    DibHeader& dib_;
    Axis axis_;
    std::int32_t at_;
};

/// The same for pictures of 2 to 8 bits, whose stored values are treated as numbers; no pixel is the number
/// -1.
class ValueLine {
public:
    using Value = std::int64_t;

    template <typename Header>
    ValueLine(Header& dib, Axis axis, std::int32_t at)
        : dib_(const_cast<DibHeader&>(dib)), axis_(axis), at_(at) {}

    Value Get(std::int64_t index) const {
        const auto i = static_cast<std::int32_t>(index);
        return static_cast<std::int32_t>(axis_ == Axis::Width ? DibGetPixel(dib_, i, at_)
                                                              : DibGetPixel(dib_, at_, i));
    }
    void Set(std::int64_t index, Value value) {
        const auto i = static_cast<std::int32_t>(index);
        const auto v = static_cast<PixelValue>(value);
        if (axis_ == Axis::Width) {
            DibSetPixel(dib_, i, at_, v);
        } else {
            DibSetPixel(dib_, at_, i, v);
        }
    }
    template <typename Operation>
    static Value Combine(Value a, Value b, Operation operation) {
        return operation(a, b);
    }

private:
    DibHeader& dib_;
    Axis axis_;
    std::int32_t at_;
};

/// The same for 24-bit pictures, straight from the rows: what ChannelLine does, with the address at hand.
class TrueColourLine {
public:
    struct Value {
        std::int64_t channels[3];
        bool none;
    };

    template <typename Header>
    TrueColourLine(Header& dib, Axis axis, std::int32_t at) {
        const BasicRowView<const std::uint8_t, const DibHeader> rows(dib);
        length_ = axis == Axis::Width ? rows.Width() : rows.Height();
        step_ = axis == Axis::Width ? 3 : -rows.Stride();
        first_ = const_cast<std::uint8_t*>(axis == Axis::Width ? rows.Row(at)
                                                               : rows.Row(0) + std::ptrdiff_t{3} * at);
    }

    Value Get(std::int64_t index) const {
        if (index >= length_) return {{255, 255, 255}, true};
        const std::uint8_t* p = first_ + step_ * static_cast<std::ptrdiff_t>(index);
        return {{p[0], p[1], p[2]}, false};
    }
    void Set(std::int64_t index, const Value& value) {
        if (value.none) return;
        std::uint8_t* p = first_ + step_ * static_cast<std::ptrdiff_t>(index);
        for (int c = 0; c < 3; ++c) {
            p[c] = static_cast<std::uint8_t>(value.channels[c]);
        }
    }
    template <typename Operation>
    static Value Combine(const Value& a, const Value& b, Operation operation) {
        return {{operation(a.channels[0], b.channels[0]), operation(a.channels[1], b.channels[1]),
                 operation(a.channels[2], b.channels[2])},
                false};
    }

private:
    std::int64_t length_;
    std::ptrdiff_t step_;
    std::uint8_t* first_;
};

/// Linear interpolation of one line. The height pass looks one pixel beyond the source and so ramps towards
/// white there; the width pass does not (docs/quirks.md 1).
template <typename Line>
void StretchLine(const Line& from, std::int64_t length, Line& to, std::int64_t newLength,
                 std::int64_t percent, Axis axis) {
    if (length < 1 || newLength < 1) return;
    const std::int64_t inflated = percent + percent / 100 + (percent % 100 != 0 ? 1 : 0);
    to.Set(0, from.Get(0));
    std::int64_t previous = 0;
    const std::int64_t last = axis == Axis::Width ? length - 1 : length;
    for (std::int64_t i = 1; i <= last; ++i) {
        const auto a = from.Get(i - 1);
        const auto b = from.Get(i);
        const std::int64_t position = i * inflated / 100;
        const std::int64_t n = position - previous;
        for (std::int64_t k = 0; k < n && previous + k < newLength; ++k) {
            to.Set(previous + k, Line::Combine(a, b, [=](std::int64_t x, std::int64_t y) {
                       return (n - k - 1) * x / n + (k + 1) * y / n;
                   }));
        }
        if (position < newLength) to.Set(position, b);
        previous = position;
    }
    to.Set(newLength - 1, from.Get(length - 1));
}

/// Box average of one line.
template <typename Line>
void ShrinkLine(const Line& from, std::int64_t length, Line& to, std::int64_t newLength, std::int64_t percent,
                Axis) {
    std::int64_t previous = 0;
    for (std::int64_t x = 0; x < newLength; ++x) {
        const std::int64_t end = (x + 1) * 100 / percent;
        typename Line::Value sum{};
        std::int64_t taken = 0;
        for (; taken < end - previous && previous + taken < length; ++taken) {
            sum = Line::Combine(sum, from.Get(previous + taken),
                                [](std::int64_t s, std::int64_t v) { return s + v; });
        }
        const std::int64_t count = taken == 0 ? 1 : taken;
        to.Set(x, Line::Combine(sum, sum, [count](std::int64_t s, std::int64_t) { return s / count; }));
        previous = end;
    }
}

enum class Pass { Stretch, Shrink };

template <typename Line>
void RunPass(Pass pass, Axis axis, const DibHeader& source, DibHeader& target, std::int64_t percent) {
    const bool wide = axis == Axis::Width;
    const std::int32_t lines = wide ? source.biHeight : source.biWidth;
    const std::int64_t length = wide ? source.biWidth : source.biHeight;
    const std::int64_t newLength = wide ? target.biWidth : target.biHeight;
    if (newLength < 1) return;
    for (std::int32_t at = 0; at < lines; ++at) {
        const Line from(source, axis, at);
        Line to(target, axis, at);
        if (pass == Pass::Stretch) {
            StretchLine(from, length, to, newLength, percent, axis);
        } else {
            ShrinkLine(from, length, to, newLength, percent, axis);
        }
    }
}

/// Shrinking to half takes exactly two pixels each; this is the mask's way to its size, and its share of the
/// time.
void HalveWidth(const DibHeader& source, DibHeader& target) {
    const ConstRowView from(source);
    const RowView to(target);
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        const std::uint8_t* s = from.Row(y);
        std::uint8_t* d = to.Row(y);
        for (std::int32_t x = 0; x < to.Width(); ++x, s += 6, d += 3) {
            d[0] = static_cast<std::uint8_t>((s[0] + s[3]) / 2);
            d[1] = static_cast<std::uint8_t>((s[1] + s[4]) / 2);
            d[2] = static_cast<std::uint8_t>((s[2] + s[5]) / 2);
        }
    }
}

void HalveHeight(const DibHeader& source, DibHeader& target) {
    const ConstRowView from(source);
    const RowView to(target);
    const std::int32_t bytes = to.Width() * 3;
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        const std::uint8_t* upper = from.Row(2 * y);
        const std::uint8_t* lower = from.Row(2 * y + 1);
        std::uint8_t* d = to.Row(y);
        for (std::int32_t i = 0; i < bytes; ++i) {
            d[i] = static_cast<std::uint8_t>((upper[i] + lower[i]) / 2);
        }
    }
}

/// sum / count, truncated, by one multiplication; exact while sum x count stays below 2^32.
class Divider {
public:
    explicit Divider(std::uint32_t count) : factor_((std::uint64_t{1} << 32) / count + 1) {}
    std::uint8_t operator()(std::uint32_t sum) const {
        return static_cast<std::uint8_t>((sum * factor_) >> 32);
    }

private:
    std::uint64_t factor_;
};

/// The source positions that each new position of a shrunken axis averages: up to here, from where the one
/// before it ended. At least one is taken, since the percentage is below 100.
struct Box {
    std::int64_t begin, end;
};
Box BoxOf(std::int64_t position, std::int64_t length, std::int64_t percent) {
    return {std::min(position * 100 / percent, length), std::min((position + 1) * 100 / percent, length)};
}

/// The box average of whole 24-bit rows, for boxes small enough for the divider.
constexpr std::int64_t kSmallestQuickPercent = 2;

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
                sums[0] += s[0];
                sums[1] += s[1];
                sums[2] += s[2];
            }
            const Divider divide(static_cast<std::uint32_t>(box.end - box.begin));
            d[0] = divide(sums[0]);
            d[1] = divide(sums[1]);
            d[2] = divide(sums[2]);
        }
    }
}

void ShrinkHeightQuickly(const DibHeader& source, DibHeader& target, std::int64_t percent) {
    constexpr std::int32_t kBlock = 256; // bytes of a row that are summed together, in the nearest cache
    const ConstRowView from(source);
    const RowView to(target);
    const std::int32_t bytes = to.Width() * 3;
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        const Box box = BoxOf(y, from.Height(), percent);
        const Divider divide(static_cast<std::uint32_t>(box.end - box.begin));
        for (std::int32_t first = 0; first < bytes; first += kBlock) {
            const std::int32_t count = std::min(kBlock, bytes - first);
            std::uint32_t sums[kBlock] = {};
            for (std::int64_t row = box.begin; row < box.end; ++row) {
                const std::uint8_t* s = from.Row(static_cast<std::int32_t>(row)) + first;
                for (std::int32_t i = 0; i < count; ++i) {
                    sums[i] += s[i];
                }
            }
            std::uint8_t* d = to.Row(y) + first;
            for (std::int32_t i = 0; i < count; ++i) {
                d[i] = divide(sums[i]);
            }
        }
    }
}

OwnedDib Resample(const DibHeader& source, std::int32_t percent, Pass pass, Axis axis) {
    const bool wide = axis == Axis::Width;
    const std::int64_t size = std::int64_t{wide ? source.biWidth : source.biHeight} * percent / 100;
    const int bits = source.biBitCount;
    OwnedDib target = DibCreateLike(source, wide ? size : source.biWidth, wide ? source.biHeight : size);
    if (!target) return target;
    if (bits == 24 && pass == Pass::Shrink && percent == 50) {
        wide ? HalveWidth(source, *target) : HalveHeight(source, *target);
    } else if (bits == 24 && pass == Pass::Shrink && percent >= kSmallestQuickPercent) {
        wide ? ShrinkWidthQuickly(source, *target, percent) : ShrinkHeightQuickly(source, *target, percent);
    } else if (bits == 24) {
        RunPass<TrueColourLine>(pass, axis, source, *target, percent);
    } else if (bits >= 2 && bits <= 8) {
        RunPass<ValueLine>(pass, axis, source, *target, percent);
    } else {
        RunPass<ChannelLine>(pass, axis, source, *target, percent);
    }
    return target;
}

OwnedDib ScaleAxis(const DibHeader& source, std::int32_t percent, Axis axis) {
    if (percent == 100) return DibCopy(source);
    return Resample(source, percent, percent > 100 ? Pass::Stretch : Pass::Shrink, axis);
}

} // namespace

OwnedDib DibToTrueColour(const DibHeader& source) {
    if (source.biBitCount != DibRoundBitDepth(source.biBitCount)) return {};
    OwnedDib target = DibCreate(source.biWidth, source.biHeight, nullptr, 24);
    if (!target || target->biWidth == 0) return target;
    Palette palette;
    DibGetPalette(source, palette);
    const ConstRowView from(source);
    const RowView to = target.Rows();
    Array<std::uint8_t> indices(from.Bits() > 8 ? 0 : static_cast<std::size_t>(from.Width()));
    if (!indices) return {};
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        std::uint8_t* out = to.Row(y);
        if (from.Bits() > 8) {
            // Deeper than 24 bits the row is still taken as it stands, three bytes a pixel.
            std::memcpy(out, from.Row(y), to.RowBytes());
            continue;
        }
        UnpackIndices(from.Row(y), from.Bits(), indices);
        for (const std::uint8_t index : indices) {
            StoreColour(out, palette[index]);
            out += 3;
        }
    }
    return target;
}

OwnedDib DibStretchWidth(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Pass::Stretch, Axis::Width);
}
OwnedDib DibShrinkWidth(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Pass::Shrink, Axis::Width);
}
OwnedDib DibStretchHeight(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Pass::Stretch, Axis::Height);
}
OwnedDib DibShrinkHeight(const DibHeader& source, std::int32_t percent) {
    return Resample(source, percent, Pass::Shrink, Axis::Height);
}

OwnedDib DibScale(const DibHeader& source, std::int32_t percentX, std::int32_t percentY) {
    const OwnedDib widened = ScaleAxis(source, percentX, Axis::Width);
    return widened ? ScaleAxis(*widened, percentY, Axis::Height) : OwnedDib();
}

OwnedDib DibCropRect(const DibHeader& source, const Rect& rect, PixelValue fill) {
    OwnedDib target =
        DibCreateLike(source, std::int64_t{rect.right} - rect.left, std::int64_t{rect.bottom} - rect.top);
    if (!target) return target;
    const bool inside =
        rect.left >= 0 && rect.top >= 0 && rect.right <= source.biWidth && rect.bottom <= source.biHeight;
    // New pixels are zero, so a fill of 0 needs no writing.
    if (!inside && fill != 0) {
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
