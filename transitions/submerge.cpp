// Submerge: the source sinks into a flat colour, its darkest parts first, and the target rises out of it, its
// brightest parts first.
#include "transitions/run.h"

namespace lumafold {
namespace {

constexpr std::int64_t kSurface = 255; // above the luminance of every pixel, white's too

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

/// The luminance of a 24-bit picture's pixels, row after row from the top, worked out once for all levels of
/// the water. Each stands for all three bytes of its pixel, so that a frame is a choice byte by byte. Empty
/// when memory is short.
Array<std::uint8_t> LuminancePlane(const DibHeader& picture) {
    const ConstRowView rows(picture);
    Array<std::uint8_t> plane(rows.RowBytes() * static_cast<std::size_t>(rows.Height()));
    std::uint8_t* out = plane.data();
    for (std::int32_t y = 0; plane && y < rows.Height(); ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::size_t i = 0; i < rows.RowBytes(); i += 3, out += 3) {
            const Rgb pixel = LoadRgb(row + i);
            out[0] = out[1] = out[2] = static_cast<std::uint8_t>(
                kShares.red[pixel.red] + kShares.green[pixel.green] + kShares.blue[pixel.blue]);
        }
    }
    return plane;
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

/// The picture with everything darker than `level`, 0 to 255, under water of this colour; kNoPixel is black.
OwnedDib SubmergeFrame(const DibHeader& picture, const Array<std::uint8_t>& luminance, std::int64_t level,
                       PixelValue colour) {
    const ConstRowView from(picture);
    OwnedDib frame = DibCreate(from.Width(), from.Height(), nullptr, 24);
    Array<std::uint8_t> water(from.RowBytes());
    if (!frame || !water) return {};
    StoreColours(water.data(), static_cast<std::size_t>(from.Width()), colour == kNoPixel ? 0 : colour);
    const RowView to = frame.Rows();
    const std::uint8_t* row = luminance.data();
    for (std::int32_t y = 0; y < to.Height(); ++y, row += to.RowBytes())
        ChooseBytes(row, static_cast<std::uint8_t>(level), water.data(), from.Row(y), to.Row(y),
                    to.RowBytes());
    return frame;
}

struct Submerge {
    std::int64_t step; ///< levels of luminance a frame

    static std::optional<Submerge> Plan(const PluginSettings& settings, CanvasSize) {
        if (settings.TransitionSubmergeStep == 0) return {};
        return Submerge{settings.TransitionSubmergeStep};
    }
    std::int64_t HalfFrames() const { return FramesBelow(kSurface, step); } ///< down, or up
    static RenderNeed Need(const PluginSettings&) { return {6, 3}; }
    std::int64_t Frames() const { return 2 * HalfFrames(); }

    struct Planes {
        Array<std::uint8_t> source, target;
        explicit operator bool() const { return source && target; }
    };
    Planes Start(const Gap& gap) const { return {LuminancePlane(gap.source), LuminancePlane(gap.target)}; }

    /// The way down counts in steps from the bottom, the way up in steps from the surface
    /// (docs/quirks.md 49).
    OwnedDib Frame(const Gap& gap, const Planes& planes, std::int64_t index) const {
        const std::int64_t down = HalfFrames();
        const PixelValue colour = gap.settings.TransitionSubmergeColor;
        if (index < down) return SubmergeFrame(gap.source, planes.source, (index + 1) * step, colour);
        const std::int64_t level = kSurface - (index - down + 1) * step;
        return SubmergeFrame(gap.target, planes.target, level, colour);
    }
};

} // namespace

constinit const Effect kSubmerge = EffectOf<Submerge>();

} // namespace lumafold
