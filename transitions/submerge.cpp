#include "transitions/submerge.h"

namespace lumafold {
namespace {

constexpr std::int64_t kSurface = 255; // above the luminance of every pixel, white's too

/// How far the water is chosen at once: whole pixels and whole words.
constexpr std::size_t kBlockBytes = 48;
using WaterBlock = std::array<std::uint8_t, kBlockBytes>;

/// Water where the luminance is below `level`, the pixels elsewhere; by masks, so that sixteen go at once.
void ChooseBytes(const std::uint8_t* __restrict luminance, std::uint8_t level, const WaterBlock& water,
                 const std::uint8_t* __restrict pixels, std::uint8_t* __restrict out, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto below = static_cast<std::uint8_t>(luminance[i] < level ? 0xFF : 0);
        out[i] = static_cast<std::uint8_t>((water[i] & below) | (pixels[i] & ~below));
    }
}

/// Frames of one half, down or up.
std::int64_t HalfFrames(std::int64_t step) { return LoopCount(step, kSurface, step); }

} // namespace

LuminancePlane::LuminancePlane(const DibHeader& picture)
    : rowBytes_(ConstRowView(picture).RowBytes()),
      bytes_(rowBytes_ * static_cast<std::size_t>(picture.biHeight)) {
    const ConstRowView rows(picture);
    std::uint8_t* out = bytes_.data();
    for (std::int32_t y = 0; bytes_ && y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::size_t i = 0; i < rowBytes_; i += 3, out += 3)
            out[0] = out[1] = out[2] = Luminance(LoadRgb(row + i));
    }
}

OwnedDib SubmergeFrame(const DibHeader& picture, const LuminancePlane& luminance, int level,
                       PixelValue colour) {
    OwnedDib frame = DibCreate(picture.biWidth, picture.biHeight, nullptr, 24);
    if (!frame) return frame;
    WaterBlock water;
    StoreColours(water.data(), kBlockBytes / 3, colour == kNoPixel ? 0 : colour);
    const ConstRowView from(picture);
    const RowView to = frame.Rows();
    for (std::int32_t y = 0; y < to.Height(); ++y) {
        for (std::size_t i = 0; i < to.RowBytes(); i += kBlockBytes) {
            ChooseBytes(luminance.Row(y) + i, static_cast<std::uint8_t>(level), water, from.Row(y) + i,
                        to.Row(y) + i, std::min(kBlockBytes, to.RowBytes() - i));
        }
    }
    return frame;
}

std::optional<Submerge> Submerge::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionSubmergeStep == 0) return {};
    return Submerge(settings.TransitionSubmergeStep);
}

std::int64_t Submerge::Frames() const { return 2 * HalfFrames(step_); }

/// The way down counts in steps from the bottom, the way up in steps from the surface (docs/quirks.md 49).
OwnedDib Submerge::Painter::Frame(std::int64_t index) const {
    const std::int64_t down = HalfFrames(step_);
    const PixelValue colour = gap_.settings.TransitionSubmergeColor;
    if (index < down)
        return SubmergeFrame(gap_.source, source_, static_cast<int>((index + 1) * step_), colour);
    const std::int64_t level = kSurface - (index - down + 1) * step_;
    return SubmergeFrame(gap_.target, target_, static_cast<int>(level), colour);
}

} // namespace lumafold
