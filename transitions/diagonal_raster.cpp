#include "transitions/diagonal_raster.h"

namespace lumafold {
namespace {

/// The stripes one corner fills. In row y they are the pixels where x + Phase(y) modulo 2 width lies below
/// width.
struct Stripes {
    std::int64_t width;
    RasterFrom from;
    std::int64_t shift;

    static Stripes OfUpperCorner(const DibHeader& picture, RasterFrom from, std::int64_t width) {
        const std::int64_t w = picture.biWidth, h = picture.biHeight;
        return {width, from, from == RasterFrom::Left ? h : width - w - h};
    }
    Stripes Others() const { return {width, from, shift + width}; }
    std::int64_t Phase(std::int64_t y) const { return from == RasterFrom::Left ? shift - y : shift + y; }
};

constexpr std::int64_t FloorModulo(std::int64_t a, std::int64_t b) { return (a % b + b) % b; }

/// Copies from `picture`, whose pixel 0 lies at column `left`, the stripes between columns begin and end.
void CopyStripes(std::uint8_t* row, const std::uint8_t* picture, std::int64_t left, std::int64_t begin,
                 std::int64_t end, std::int64_t width, std::int64_t phase) {
    for (std::int64_t x = begin - FloorModulo(begin + phase, 2 * width); x < end; x += 2 * width) {
        const std::int64_t first = std::max(x, begin), last = std::min(x + width, end);
        if (first >= last) continue;
        std::memcpy(row + first * 3, picture + (first - left) * 3,
                    static_cast<std::size_t>(last - first) * 3);
    }
}

/// The picture with its corner at (left, top), clipped, seen through the stripes.
void LayOver(const RowView& frame, const ConstRowView& picture, std::int64_t left, std::int64_t top,
             const Stripes& stripes) {
    const std::int64_t begin = std::max<std::int64_t>(left, 0);
    const std::int64_t end = std::min<std::int64_t>(left + picture.Width(), frame.Width());
    const std::int64_t lastRow = std::min<std::int64_t>(top + picture.Height(), frame.Height());
    for (std::int64_t y = std::max<std::int64_t>(top, 0); y < lastRow; ++y)
        CopyStripes(frame.Row(y), picture.Row(y - top), left, begin, end, stripes.width, stripes.Phase(y));
}

} // namespace

OwnedDib DiagonalRasterFrame(const DibHeader& source, const DibHeader& target, std::int64_t percent,
                             std::int64_t stripeWidth, RasterFrom from) {
    OwnedDib frame = DibCopy(source);
    if (!frame) return frame;
    // The way is the shorter side, so on other than square pictures the target never gets into place
    // (docs/quirks.md 37).
    const std::int64_t way = std::min(source.biWidth, source.biHeight) * percent / 100;
    const std::int64_t outX = way - target.biWidth, outY = way - target.biHeight;
    const std::int64_t upperX = from == RasterFrom::Left ? outX : -outX;
    const Stripes stripes = Stripes::OfUpperCorner(source, from, stripeWidth);
    const ConstRowView picture(target);
    LayOver(frame.Rows(), picture, upperX, outY, stripes);
    LayOver(frame.Rows(), picture, -upperX, -outY, stripes.Others());
    return frame;
}

template <RasterFrom From>
std::optional<DiagonalRaster<From>> DiagonalRaster<From>::Plan(const PluginSettings& settings, CanvasSize) {
    if (settings.TransitionDiagonalRasterStep == 0 || settings.TransitionDiagonalRasterSize == 0) return {};
    return DiagonalRaster(settings.TransitionDiagonalRasterStep, settings.TransitionDiagonalRasterSize);
}

template <RasterFrom From>
std::int64_t DiagonalRaster<From>::Frames() const {
    return LoopCount(0, 100, step_);
}

/// The first frame repeats the source (docs/quirks.md 38).
template <RasterFrom From>
OwnedDib DiagonalRaster<From>::Frame(const Gap& gap, std::int64_t index) const {
    return DiagonalRasterFrame(gap.source, gap.target, index * step_, stripeWidth_, From);
}

template class DiagonalRaster<RasterFrom::Left>;
template class DiagonalRaster<RasterFrom::Right>;

} // namespace lumafold
