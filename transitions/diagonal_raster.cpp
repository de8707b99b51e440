// Diagonal raster: diagonal stripes comb the target into place, every other one from a corner at the top,
// those between from the opposite corner.
#include "transitions/run.h"

namespace lumafold {
namespace {

/// Where the upper corner is that the target enters from; the stripes run from that side down to the other.
enum class RasterFrom { Left, Right };

constexpr std::int64_t FloorModulo(std::int64_t a, std::int64_t b) { return (a % b + b) % b; }

/// Copies from `picture`, whose pixel 0 lies at column `left`, the pixels of columns begin to end for which
/// x + phase modulo twice `width`, the stripes', lies below it.
void CopyStripes(std::uint8_t* row, const std::uint8_t* picture, std::int64_t left, std::int64_t begin,
                 std::int64_t end, std::int64_t width, std::int64_t phase) {
    for (std::int64_t x = begin - FloorModulo(begin + phase, 2 * width); x < end; x += 2 * width) {
        const std::int64_t first = std::max(x, begin), last = std::min(x + width, end);
        if (first >= last) continue;
        std::memcpy(row + first * 3, picture + (first - left) * 3,
                    static_cast<std::size_t>(last - first) * 3);
    }
}

struct DiagonalRaster {
    std::int64_t step; ///< percent a frame
    std::int64_t stripeWidth;
    RasterFrom from;

    static std::optional<DiagonalRaster> Plan(const PluginSettings& settings, CanvasSize, RasterFrom from) {
        const std::int64_t step = settings.TransitionDiagonalRasterStep;
        const std::int64_t width = settings.TransitionDiagonalRasterSize;
        if (step == 0 || width == 0) return {};
        return DiagonalRaster{step, width, from};
    }
    std::int64_t Frames() const { return LoopCount(0, 100, step); }

    /// The first frame repeats the source (docs/quirks.md 38). The way is the shorter side, so on other than
    /// square pictures the target never gets into place (docs/quirks.md 37).
    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        OwnedDib frame = DibCopy(gap.source);
        if (!frame) return frame;
        const auto [width, height] = gap.size;
        const std::int64_t way = std::min(width, height) * (index * step) / 100;
        const std::int64_t outX = way - width, outY = way - height;
        const std::int64_t upperX = from == RasterFrom::Left ? outX : -outX;
        const std::int64_t phase =
            from == RasterFrom::Left ? std::int64_t{height} : stripeWidth - width - height;
        const ConstRowView picture(gap.target);
        LayOver(frame.Rows(), picture, upperX, outY, phase);
        LayOver(frame.Rows(), picture, -upperX, -outY, phase + stripeWidth);
        return frame;
    }

    /// The picture with its corner at (left, top), clipped, seen through the stripes; `phase` is their row
    /// 0's.
    void LayOver(const RowView& frame, const ConstRowView& picture, std::int64_t left, std::int64_t top,
                 std::int64_t phase) const {
        const std::int64_t begin = std::max<std::int64_t>(left, 0);
        const std::int64_t end = std::min<std::int64_t>(left + picture.Width(), frame.Width());
        const std::int64_t lastRow = std::min<std::int64_t>(top + picture.Height(), frame.Height());
        for (std::int64_t y = std::max<std::int64_t>(top, 0); y < lastRow; ++y) {
            CopyStripes(frame.Row(y), picture.Row(y - top), left, begin, end, stripeWidth,
                        from == RasterFrom::Left ? phase - y : phase + y);
        }
    }
};

} // namespace

constinit const Effect kDiagonalRasterLeft = EffectOf<DiagonalRaster, RasterFrom::Left>();
constinit const Effect kDiagonalRasterRight = EffectOf<DiagonalRaster, RasterFrom::Right>();

} // namespace lumafold
