// Framework: a cross-fade in which every frame is smeared towards the middle, most in the middle of the fade.
// It reads no setting: wanted, though the dialog shows three for it.
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

constexpr std::size_t kSamples = 20;
constexpr int kFadeStep = 10;
constexpr int kFullShare = 255;

/// For every position along an axis the positions its samples come from. They lie between it and the middle,
/// truncated in picture coordinates, so the two halves are no mirror images.
void FillSampleTable(std::int32_t size, int intensity, std::uint32_t* table) {
    const auto s = static_cast<float>(0.01 * intensity);
    const std::int32_t middle = size / 2;
    for (std::int32_t at = 0; at < size; ++at) {
        *table++ = static_cast<std::uint32_t>(at);
        for (std::size_t k = 1; k < kSamples; ++k) {
            const double f = 1.0 - (static_cast<double>(k) * static_cast<double>(s)) * 0.01;
            *table++ = static_cast<std::uint32_t>(f * (at - middle) + middle);
        }
    }
}

/// A pixel's three channels 16 bits apart: twenty of them add up without a carry.
using WidePixel = std::uint64_t;

class ZoomBlur {
public:
    ZoomBlur(std::int32_t width, std::int32_t height)
        : width_(width), height_(height), columns_(static_cast<std::size_t>(width) * kSamples),
          rows_(static_cast<std::size_t>(height) * kSamples),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    explicit operator bool() const { return columns_ && rows_ && pixels_; }

    OwnedDib Render(const DibHeader* picture, int intensity) {
        if (!Covers24(picture, width_, height_)) return {};
        OwnedDib result(DibCreate(width_, height_, nullptr, 24));
        const LockedDib locked(result.Get());
        if (!locked) return {};
        Widen(picture);
        FillSampleTable(width_, intensity, columns_.data());
        FillSampleTable(height_, intensity, rows_.data());
        const RowView rows(locked.Get());
        for (std::int32_t y = 0; y < height_; ++y) {
            RenderRow(rows_.data() + static_cast<std::size_t>(y) * kSamples, rows.Row(y));
        }
        return result;
    }

private:
    void Widen(const DibHeader* picture) {
        const ConstRowView rows(picture);
        WidePixel* out = pixels_.data();
        for (std::int32_t y = 0; y < height_; ++y) {
            const std::uint8_t* row = rows.Row(y);
            for (std::int32_t x = 0; x < width_; ++x, row += 3) {
                *out++ = row[0] | static_cast<WidePixel>(row[1]) << 16 | static_cast<WidePixel>(row[2]) << 32;
            }
        }
    }

    void RenderRow(const std::uint32_t* sampleRows, std::uint8_t* out) const {
        const WidePixel* lines[kSamples];
        for (std::size_t k = 0; k < kSamples; ++k) {
            lines[k] =
                pixels_.data() + static_cast<std::size_t>(sampleRows[k]) * static_cast<std::size_t>(width_);
        }
        const std::uint32_t* column = columns_.data();
        for (std::int32_t x = 0; x < width_; ++x, column += kSamples, out += 3) {
            WidePixel sum = 0;
            for (std::size_t k = 0; k < kSamples; ++k) {
                sum += lines[k][column[k]];
            }
            for (int c = 0; c < 3; ++c) {
                out[c] = static_cast<std::uint8_t>((sum >> (16 * c) & 0xFFFF) / kSamples);
            }
        }
    }

    std::int32_t width_, height_;
    Array<std::uint32_t> columns_, rows_;
    Array<WidePixel> pixels_;
};

} // namespace

int Framework(TransitionContext& context) {
    EffectRun run(context);
    if (!run) return kEffectFailed;
    ZoomBlur blur(run.Width(), run.Height());
    if (!blur) return kEffectFailed;

    double energy = 0.0;
    const double delta = 10 * 0.0078125;
    for (int share = kFadeStep; share < kFullShare; share += kFadeStep) {
        OwnedDib frame;
        {
            const OwnedDib mix(DibCrossfade(run.Source(), run.Target(), share));
            const LockedDib locked(mix.Get());
            if (!locked) return kEffectFailed;
            frame = blur.Render(locked.Get(), static_cast<int>(energy * 400.0) + 100);
        }
        energy = share < 128 ? energy + delta : energy - delta;
        if (!run.Emit(std::move(frame))) return kEffectFailed;
    }
    return kEffectDone;
}
std::int64_t FrameworkFrames(CanvasSize) { return 1 + LoopCount(kFadeStep, kFullShare, kFadeStep); }

} // namespace lumafold
