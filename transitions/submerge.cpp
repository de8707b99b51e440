// Submerge: the source sinks into a flat colour, its darkest parts first, and the target rises out of it, its
// brightest parts first.
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

constexpr std::int64_t kSurface = 255; // above the luminance of every pixel; no frame gets there

/// Each share truncated by itself, so that white is 254.
std::uint8_t Luminance(unsigned red, unsigned green, unsigned blue) {
    return static_cast<std::uint8_t>(red * 30 / 100 + green * 59 / 100 + blue * 11 / 100);
}

/// Water where the luminance is below `level`, the pixels elsewhere; by masks, so that sixteen go at once.
void ChooseBytes(const std::uint8_t* __restrict luminance, std::uint8_t level,
                 const std::uint8_t* __restrict water, const std::uint8_t* __restrict pixels,
                 std::uint8_t* __restrict out, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto below = static_cast<std::uint8_t>(luminance[i] < level ? 0xFF : 0);
        out[i] = static_cast<std::uint8_t>((water[i] & below) | (pixels[i] & ~below));
    }
}

/// A picture that sinks or rises. The luminance of its pixels is worked out once for all levels, and kept in
/// a byte for each byte of the picture, so that a frame is a choice byte by byte.
class Swimmer {
public:
    Swimmer(const DibHeader* picture, const Array<std::uint8_t>& water)
        : rows_(picture), water_(water), rowBytes_(static_cast<std::size_t>(rows_.Width()) * 3),
          luminance_(rowBytes_ * static_cast<std::size_t>(rows_.Height())) {
        std::uint8_t* out = luminance_.data();
        for (std::int32_t y = 0; luminance_ && y < rows_.Height(); ++y) {
            const std::uint8_t* row = rows_.Row(y);
            for (std::size_t i = 0; i < rowBytes_; i += 3, out += 3) {
                out[0] = out[1] = out[2] = Luminance(row[i + 2], row[i + 1], row[i]);
            }
        }
    }

    explicit operator bool() const { return static_cast<bool>(luminance_); }

    /// What is darker than `level` lies under water.
    OwnedDib Frame(std::uint8_t level) const {
        OwnedDib frame(DibCreate(rows_.Width(), rows_.Height(), nullptr, rows_.Bits()));
        const LockedDib out(frame.Get());
        if (!out) return {};
        const RowView to(out.Get());
        const std::uint8_t* luminance = luminance_.data();
        for (std::int32_t y = 0; y < rows_.Height(); ++y, luminance += rowBytes_) {
            ChooseBytes(luminance, level, water_.data(), rows_.Row(y), to.Row(y), rowBytes_);
        }
        return frame;
    }

private:
    ConstRowView rows_;
    const Array<std::uint8_t>& water_;
    std::size_t rowBytes_;
    Array<std::uint8_t> luminance_;
};

/// A row of the water, as wide as the picture.
Array<std::uint8_t> WaterRow(std::int32_t width) {
    // The value that stands for no pixel is never written and leaves new pixels as they are, black.
    PixelValue colour = pluginSettings.TransitionSubmergeColor;
    if (colour == kNoPixel) colour = 0;
    Array<std::uint8_t> row(static_cast<std::size_t>(width) * 3);
    for (std::size_t i = 0; i < row.size(); i += 3) {
        row[i] = static_cast<std::uint8_t>(BlueOf(colour));
        row[i + 1] = static_cast<std::uint8_t>(GreenOf(colour));
        row[i + 2] = static_cast<std::uint8_t>(RedOf(colour));
    }
    return row;
}

} // namespace

int Submerge(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionSubmergeStep;
    if (!run || step == 0 || !Covers24(run.Source(), 1, 1) ||
        !Covers24(run.Target(), run.Width(), run.Height())) {
        return kEffectFailed;
    }
    const Array<std::uint8_t> water = WaterRow(std::max(run.Source()->biWidth, run.Target()->biWidth));
    if (!water) return kEffectFailed;
    // The way down counts in steps from the bottom, the way up in steps from the surface: wanted.
    {
        const Swimmer source(run.Source(), water);
        if (!source) return kEffectFailed;
        for (std::int64_t level = step; level < kSurface; level += step) {
            if (!run.Emit(source.Frame(static_cast<std::uint8_t>(level)))) return kEffectFailed;
        }
    }
    const Swimmer target(run.Target(), water);
    if (!target) return kEffectFailed;
    for (std::int64_t level = kSurface - step; level > 0; level -= step) {
        if (!run.Emit(target.Frame(static_cast<std::uint8_t>(level)))) return kEffectFailed;
    }
    return kEffectDone;
}

std::int64_t SubmergeFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionSubmergeStep;
    return step == 0 ? 0 : 1 + 2 * LoopCount(step, kSurface, step);
}

} // namespace lumafold
