// Framework: a cross-fade in which every frame is smeared towards the middle, most in the middle of the fade.
// It reads no setting, though the dialog shows three for it (docs/quirks.md 39).
#include "transitions/compositing.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

constexpr std::size_t kSamples = 20;

/// For every position along an axis the positions its samples come from. They lie between it and the middle,
/// truncated in picture coordinates, so the two halves are no mirror images (docs/quirks.md 40). Empty when
/// memory is short.
Array<std::uint32_t> SampleTable(std::int32_t size, int intensity) {
    const auto s = static_cast<float>(0.01 * intensity);
    const std::int32_t middle = size / 2;
    Array<std::uint32_t> table(static_cast<std::size_t>(size) * kSamples);
    if (!table) return table;
    std::uint32_t* out = table.data();
    for (std::int32_t at = 0; at < size; ++at) {
        *out++ = static_cast<std::uint32_t>(at);
        for (std::size_t k = 1; k < kSamples; ++k) {
            const double f = 1.0 - (static_cast<double>(k) * static_cast<double>(s)) * 0.01;
            *out++ = static_cast<std::uint32_t>(f * (at - middle) + middle);
        }
    }
    return table;
}

/// A pixel's three channels 16 bits apart: twenty of them add up without a carry.
using WidePixel = std::uint64_t;

/// The pixels row after row from the top; empty when memory is short.
Array<WidePixel> WidePixels(const ConstRowView& rows) {
    Array<WidePixel> pixels(static_cast<std::size_t>(rows.Width()) * static_cast<std::size_t>(rows.Height()));
    if (!pixels) return pixels;
    WidePixel* out = pixels.data();
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::int32_t x = 0; x < rows.Width(); ++x, row += 3)
            *out++ = row[0] | static_cast<WidePixel>(row[1]) << 16 | static_cast<WidePixel>(row[2]) << 32;
    }
    return pixels;
}

/// `lines` are the rows that the row's samples come from; `column` runs over the columns' samples.
void BlurRow(const std::array<const WidePixel*, kSamples>& lines, const std::uint32_t* column,
             std::int32_t width, std::uint8_t* out) {
    for (std::int32_t x = 0; x < width; ++x, column += kSamples, out += 3) {
        WidePixel sum = 0;
        for (std::size_t k = 0; k < kSamples; ++k)
            sum += lines[k][column[k]];
        for (int c = 0; c < 3; ++c)
            out[c] = static_cast<std::uint8_t>((sum >> (16 * c) & 0xFFFF) / kSamples);
    }
}

/// Each pixel of a 24-bit picture becomes the mean of twenty between it and a point towards the middle, which
/// `intensity` of 1 to 500 puts the farther away the larger it is.
OwnedDib ZoomBlur(const DibHeader& picture, int intensity) {
    const std::int32_t width = picture.biWidth, height = picture.biHeight;
    const Array<std::uint32_t> columns = SampleTable(width, intensity),
                               lines = SampleTable(height, intensity);
    const Array<WidePixel> pixels = WidePixels(ConstRowView(picture));
    OwnedDib result = DibCreate(width, height, nullptr, 24);
    if (!columns || !lines || !pixels || !result) return {};
    const RowView rows = result.Rows();
    for (std::int32_t y = 0; y < height; ++y) {
        std::array<const WidePixel*, kSamples> sampled;
        for (std::size_t k = 0; k < kSamples; ++k) {
            const std::size_t line = lines[static_cast<std::size_t>(y) * kSamples + k];
            sampled[k] = pixels.data() + line * static_cast<std::size_t>(width);
        }
        BlurRow(sampled, columns.data(), width, rows.Row(y));
    }
    return result;
}

/// The intensity rises by 31.25 a frame as long as less than half of the target shows, then falls again.
int IntensityAt(std::int64_t index) {
    constexpr std::int64_t kRising = 12;
    return static_cast<int>(static_cast<double>(std::min(index, 2 * kRising - index)) * 31.25) + 100;
}

struct Framework {
    static constexpr std::int64_t kStep = 10; // levels of 255 a frame

    static std::optional<Framework> Plan(const PluginSettings&, CanvasSize) { return Framework(); }
    static RenderNeed Need(const PluginSettings&) { return {2, 11}; }
    std::int64_t Frames() const { return FramesBelow(255, kStep); }

    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        const OwnedDib mix = DibCrossfade(gap.source, gap.target, static_cast<int>((index + 1) * kStep));
        return mix ? ZoomBlur(*mix, IntensityAt(index)) : OwnedDib();
    }
};

} // namespace

constinit const Effect kFramework = EffectOf<Framework>();

} // namespace lumafold
