#include "transitions/submerge.h"

namespace lumafold {
namespace {

constexpr std::int64_t kSurface = 255; // above the luminance of every pixel, white's too

/// Water where the luminance is below `level`, the pixels elsewhere; by masks, so that sixteen go at once.
void ChooseBytes(const std::uint8_t* __restrict luminance, std::uint8_t level,
                 const std::uint8_t* __restrict water, const std::uint8_t* __restrict pixels,
                 std::uint8_t* __restrict out, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto below = static_cast<std::uint8_t>(luminance[i] < level ? 0xFF : 0);
        out[i] = static_cast<std::uint8_t>((water[i] & below) | (pixels[i] & ~below));
    }
}

/// What each channel adds to the luminance.
struct LuminanceShares {
    std::array<std::uint8_t, 256> red, green, blue;
};
constexpr LuminanceShares kShares = [] {
    LuminanceShares shares{};
    for (std::size_t i = 0; i < 256; ++i) {
        const auto level = static_cast<std::uint8_t>(i);
        shares.red[i] = Luminance({level, 0, 0});
        shares.green[i] = Luminance({0, level, 0});
        shares.blue[i] = Luminance({0, 0, level});
    }
    return shares;
}();

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
        for (std::size_t i = 0; i < rowBytes_; i += 3, out += 3) {
            const Rgb pixel = LoadRgb(row + i);
            out[0] = out[1] = out[2] = static_cast<std::uint8_t>(
                kShares.red[pixel.red] + kShares.green[pixel.green] + kShares.blue[pixel.blue]);
        }
    }
}

OwnedDib SubmergeFrame(const DibHeader& picture, const LuminancePlane& luminance, int level,
                       PixelValue colour) {
    OwnedDib frame = DibCreate(picture.biWidth, picture.biHeight, nullptr, 24);
    Array<std::uint8_t> water(ConstRowView(picture).RowBytes());
    if (!frame || !water) return {};
    StoreColours(water.data(), static_cast<std::size_t>(picture.biWidth), colour == kNoPixel ? 0 : colour);
    const ConstRowView from(picture);
    const RowView to = frame.Rows();
    for (std::int32_t y = 0; y < to.Height(); ++y)
        ChooseBytes(luminance.Row(y), static_cast<std::uint8_t>(level), water.data(), from.Row(y), to.Row(y),
                    to.RowBytes());
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
