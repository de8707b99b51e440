#include "transitions/backscatter.h"

#include <cstdlib>

#include "transitions/run.h"

namespace lumafold {
namespace {

enum class PushAxis { Horizontal, Vertical };

/// The colour with each channel shifted down.
PixelValue Dimmed(PixelValue colour, int shift) {
    return MakeColour(RedOf(colour) >> shift, GreenOf(colour) >> shift, BlueOf(colour) >> shift);
}

void DrawSeam(PushAxis axis, DibHeader& frame, std::int64_t seam, PixelValue colour) {
    const PixelValue outer = Dimmed(colour, 2), inner = Dimmed(colour, 1);
    std::int64_t across = seam - 2;
    for (const PixelValue line : {outer, inner, colour, inner, outer}) {
        const bool isRow = axis == PushAxis::Vertical;
        for (std::int32_t i = 0; i < (isRow ? frame.biWidth : frame.biHeight); ++i)
            DibSetPixel(frame, isRow ? i : across, isRow ? across : i, line);
        ++across;
    }
}

/// How far a point is scattered along one axis.
std::int32_t DrawOffset(Random& random, std::int32_t size) {
    return static_cast<std::int32_t>(random.Draw() % static_cast<std::uint32_t>(size)) - size / 2;
}

/// Whether a point moved by `dy` is one of those that one more draw may leave in place: half of them stay.
bool IsThinned(std::int32_t dy, std::int32_t size) { return std::abs(dy) > size / 4; }

/// Copies a pixel of the picture to where it falls, if that is inside too.
void CopyPixel(const RowView& rows, std::int64_t x, std::int64_t y, std::int64_t toX, std::int64_t toY) {
    if (toX < 0 || toX >= rows.Width() || toY < 0 || toY >= rows.Height()) return;
    StoreColour(rows.Row(toY) + 3 * toX, LoadRgb(rows.Row(y) + 3 * x));
}

void SkipThinnedPoints(std::int64_t points, std::int32_t size, Random& random) {
    for (std::int64_t i = 0; i < points; ++i) {
        random.Skip(1);
        if (IsThinned(DrawOffset(random, size), size)) random.Skip(1);
    }
}

/// A scatter's positions across the seam, with the part of them that lies inside a picture.
struct Band {
    std::int64_t from, to, insideFrom, insideTo;

    Band(std::int64_t seam, std::int32_t size, std::int32_t extent)
        : from(seam - size), to(seam + size), insideFrom(std::clamp<std::int64_t>(0, from, to)),
          insideTo(std::clamp<std::int64_t>(extent, insideFrom, to)) {}
};

} // namespace

std::int64_t SeamAt(const DibHeader& target, std::int64_t percent) { return target.biHeight * percent / 100; }

OwnedDib PushWipeVertical(const DibHeader& target, const DibHeader& source, std::int64_t percent) {
    const std::int32_t width = target.biWidth, height = target.biHeight;
    const std::int64_t seam = SeamAt(target, percent);
    OwnedDib frame = DibCreateLike(target, width, height);
    if (!frame) return frame;
    DibCopyRect(*frame, 0, 0, target, 0, height - seam, width, seam);
    DibCopyRect(*frame, 0, seam, source, 0, 0, width, height - seam);
    return frame;
}

OwnedDib PushWipeHorizontal(const DibHeader& target, const DibHeader& source, std::int64_t percent) {
    const std::int32_t width = target.biWidth, height = target.biHeight;
    const std::int64_t seam = SeamAt(target, percent);
    OwnedDib frame = DibCreateLike(target, width, height);
    if (!frame) return frame;
    DibCopyRect(*frame, 0, 0, target, width - seam, 0, seam, height);
    DibCopyRect(*frame, seam, 0, source, 0, 0, width - seam, height);
    return frame;
}

// Both scatters work in place, so their order is part of the result: a point moved early may be picked up
// again.

void ScatterSeamVertical(DibHeader& frame, std::int64_t seam, std::int32_t size, PixelValue colour,
                         Random& random) {
    DrawSeam(PushAxis::Vertical, frame, seam, colour);
    if (size <= 0) return;
    const RowView rows(frame);
    const Band band(seam, size, rows.Height());
    SkipThinnedPoints((band.insideFrom - band.from) * rows.Width(), size, random);
    for (std::int64_t y = band.insideFrom; y < band.insideTo; ++y) {
        for (std::int32_t x = 0; x < rows.Width(); ++x) {
            const std::int32_t dx = DrawOffset(random, size);
            const std::int32_t dy = DrawOffset(random, size);
            if (IsThinned(dy, size) && random.Draw() % 2 != 0) continue;
            CopyPixel(rows, x, y, std::int64_t{x} + dx, y + dy);
        }
    }
    SkipThinnedPoints((band.to - band.insideTo) * rows.Width(), size, random);
}

void ScatterSeamHorizontal(DibHeader& frame, std::int64_t seam, std::int32_t size, PixelValue colour,
                           Random& random) {
    DrawSeam(PushAxis::Horizontal, frame, seam, colour);
    if (size <= 0) return;
    constexpr std::uint64_t kDrawsOfAPoint = 2;
    const RowView rows(frame);
    const Band band(seam, size, rows.Width());
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        random.Skip(kDrawsOfAPoint * static_cast<std::uint64_t>(band.insideFrom - band.from));
        for (std::int64_t x = band.insideFrom; x < band.insideTo; ++x) {
            const std::int32_t dx = DrawOffset(random, size);
            const std::int32_t dy = DrawOffset(random, size);
            CopyPixel(rows, x, y, x + dx, std::int64_t{y} + dy);
        }
        random.Skip(kDrawsOfAPoint * static_cast<std::uint64_t>(band.to - band.insideTo));
    }
}

namespace {

struct Backscatter {
    // A hundred times what the dialog allows. How many draws a point of the vertical scatter takes is told by
    // the draws themselves, so that they can only be taken one by one (docs/quirks.md 35).
    static constexpr std::uint32_t kLargestVerticalSize = 10000;

    std::int64_t step; ///< percent a frame
    PushAxis axis;

    static std::optional<Backscatter> Plan(const PluginSettings& settings, CanvasSize, PushAxis axis) {
        if (settings.TransitionSparkleStep == 0) return {};
        if (axis == PushAxis::Vertical && settings.TransitionSparkleSize > kLargestVerticalSize) return {};
        return Backscatter{settings.TransitionSparkleStep, axis};
    }
    std::int64_t Frames() const { return 1 + FramesBelow(100, step) + 1; }

    /// A frame takes up the draws where the one before left off.
    std::optional<Random> Start(const Gap& gap) const { return Random(gap.settings.RandomSeed); }

    /// The first and the last seam stand a step outside; with a step of 2 their outer lines still show
    /// (docs/quirks.md 36).
    OwnedDib Frame(const Gap& gap, std::optional<Random>& random, std::int64_t index) const {
        const bool vertical = axis == PushAxis::Vertical, last = index == Frames() - 1;
        const std::int64_t percent = last ? 100 : index * step;
        const auto wipe = vertical ? PushWipeVertical : PushWipeHorizontal;
        OwnedDib frame = wipe(gap.target, gap.source, percent);
        if (!frame) return frame;
        std::int64_t seam = index == 0 ? -step : SeamAt(gap.target, percent);
        if (last) seam = step + (vertical ? gap.size.height : gap.size.width);
        const auto scatter = vertical ? ScatterSeamVertical : ScatterSeamHorizontal;
        const auto size = static_cast<std::int32_t>(gap.settings.TransitionSparkleSize);
        scatter(*frame, seam, size, gap.settings.TransitionSparkleColor, *random);
        return frame;
    }
};

} // namespace

constinit const Effect kBackscatterHorizontal = EffectOf<Backscatter, PushAxis::Horizontal>();
constinit const Effect kBackscatterVertical = EffectOf<Backscatter, PushAxis::Vertical>();

} // namespace lumafold
