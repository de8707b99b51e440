// Diagonal raster: diagonal stripes comb the target into place, every other one from a corner at the top,
// those between from the opposite corner.
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

/// Where the upper corner is that the target enters from; the stripes run from that side down to the other.
enum class From { Left, Right };

/// The stripes one corner fills. In row y they are the pixels where x + Phase(y) modulo 2 width lies below
/// width.
struct Stripes {
    std::int64_t width;
    From from;
    std::int64_t shift;

    static Stripes OfUpperCorner(const EffectRun& run, From from, std::int64_t width) {
        const std::int64_t w = run.Width(), h = run.Height();
        return {width, from, from == From::Left ? h : width - w - h};
    }
    Stripes Others() const { return {width, from, shift + width}; }
    std::int64_t Phase(std::int64_t y) const { return from == From::Left ? shift - y : shift + y; }
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
    for (std::int64_t y = std::max<std::int64_t>(top, 0); y < lastRow; ++y) {
        CopyStripes(frame.Row(static_cast<std::int32_t>(y)), picture.Row(static_cast<std::int32_t>(y - top)),
                    left, begin, end, stripes.width, stripes.Phase(y));
    }
}

OwnedDib DiagonalRasterFrame(const EffectRun& run, std::int64_t percent, const Stripes& stripes) {
    OwnedDib frame(DibCreate(run.Width(), run.Height(), nullptr, 24));
    const LockedDib locked(frame.Get());
    if (!locked) return {};
    DibCopyRect(locked.Get(), 0, 0, run.Source(), 0, 0, run.Width(), run.Height());

    // The way is the shorter side, so on other than square pictures the target never gets into place: wanted.
    const std::int64_t way = std::min(run.Width(), run.Height()) * percent / 100;
    const RowView rows(locked.Get());
    const ConstRowView target(run.Target());
    const std::int64_t outX = way - target.Width(), outY = way - target.Height();
    const std::int64_t upperX = stripes.from == From::Left ? outX : -outX;
    LayOver(rows, target, upperX, outY, stripes);
    LayOver(rows, target, -upperX, -outY, stripes.Others());
    return frame;
}

int DiagonalRaster(TransitionContext& context, From from) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionDiagonalRasterStep;
    const std::int64_t width = pluginSettings.TransitionDiagonalRasterSize;
    if (!run || step == 0 || width == 0 || !Covers24(run.Source(), run.Width(), run.Height()) ||
        !Covers24(run.Target(), run.Width(), run.Height())) {
        return kEffectFailed;
    }
    const Stripes stripes = Stripes::OfUpperCorner(run, from, width);
    // The first frame repeats the source: wanted.
    for (std::int64_t p = 0; p < 100; p += step) {
        if (!run.Emit(DiagonalRasterFrame(run, p, stripes))) return kEffectFailed;
    }
    return kEffectDone;
}

} // namespace

int DiagonalRasterLeft(TransitionContext& context) { return DiagonalRaster(context, From::Left); }
int DiagonalRasterRight(TransitionContext& context) { return DiagonalRaster(context, From::Right); }

std::int64_t DiagonalRasterLeftFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionDiagonalRasterStep;
    return step == 0 || pluginSettings.TransitionDiagonalRasterSize == 0 ? 0 : 1 + LoopCount(0, 100, step);
}
std::int64_t DiagonalRasterRightFrames(CanvasSize canvas) { return DiagonalRasterLeftFrames(canvas); }

} // namespace lumafold
