// Paintball: round splats of the target land one a frame on random points of a grid, until it covers the
// source. Splats only add to the mask, so a frame is the one before, blended anew where its splat landed.
#include <cmath>

#include "image/resample.h"
#include "platform/shapes.h"
#include "transitions/compositing.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/random.h"

namespace lumafold {
namespace {

/// The points the splats land on. Every axis has one cell more than it has whole ones, even where nothing is
/// left over: wanted.
struct Grid {
    std::int64_t spacing, columns, rows;

    Grid(CanvasSize canvas, std::int64_t size)
        : spacing(size), columns(canvas.width / size + 1), rows(canvas.height / size + 1) {}
    std::int64_t Cells() const { return columns * rows; }
};

/// The cells not hit yet, in reading order.
class FreeCells {
public:
    explicit FreeCells(std::int64_t count) : cells_(static_cast<std::size_t>(count)), count_(cells_.size()) {
        for (std::size_t i = 0; i < count_; ++i) {
            cells_[i] = static_cast<std::uint32_t>(i);
        }
    }
    explicit operator bool() const { return static_cast<bool>(cells_); }
    bool Empty() const { return count_ == 0; }

    std::int64_t Take(Random& random) {
        const std::size_t place = random.Draw() % count_;
        const std::uint32_t cell = cells_[place];
        // The later ones keep their order: it decides what the next draws hit.
        --count_;
        std::memmove(&cells_[place], &cells_[place] + 1, (count_ - place) * sizeof(cell));
        return cell;
    }

private:
    Array<std::uint32_t> cells_;
    std::size_t count_;
};

/// A circle on the canvas, which is twice as fine as the picture so that halving softens the edges.
struct Splat {
    std::int64_t x, y, radius;

    /// Its circles meet in the middle of the cells, so that the last ones leave nothing uncovered.
    Splat(const Grid& grid, std::int64_t cell, CanvasSize picture)
        : x(cell % grid.columns * grid.spacing * 2), y(cell / grid.columns * grid.spacing * 2) {
        const double side = 2.0 * static_cast<double>(grid.spacing);
        // What covers the canvas from any point of the grid is large enough.
        const std::int64_t largest = 4 * (std::int64_t{picture.width} + picture.height);
        radius = static_cast<std::int64_t>(
            std::min(std::ceil(std::sqrt(side * side + side * side) * 0.5), static_cast<double>(largest)));
    }

    void Draw(ShapeCanvas& shapes) const {
        const auto at = [](std::int64_t v) { return static_cast<std::int32_t>(v); };
        shapes.Ellipse(at(x - radius), at(y - radius), at(x + radius), at(y + radius));
    }
    /// The pixels of the picture it can reach.
    Rect Box(CanvasSize picture) const {
        const auto first = [this](std::int64_t at) {
            return static_cast<std::int32_t>(std::max<std::int64_t>(at - radius, 0) / 2);
        };
        const auto end = [this](std::int64_t at, std::int64_t size) {
            return static_cast<std::int32_t>(std::min((at + radius + 1) / 2, size));
        };
        return {first(x), first(y), end(x, picture.width), end(y, picture.height)};
    }
};

/// Source and target within the box, blended through the canvas there, laid over the frame.
bool BlendBox(const TransitionContext& context, DibHandle canvas, const Rect& box, DibHeader* frame) {
    const Rect fine = {box.left * 2, box.top * 2, box.right * 2, box.bottom * 2};
    const OwnedDib shape(DibCropRect(canvas, fine, 0));
    const OwnedDib halved(DibScale(shape.Get(), 50, 50));
    const OwnedDib sourcePart(DibCropRect(context.image, box, 0)),
        targetPart(DibCropRect(context.nextImage, box, 0));
    const LockedDib mask(halved.Get()), source(sourcePart.Get()), target(targetPart.Get());
    if (!mask || !source || !target) return false;
    const OwnedDib blended(DibMaskBlend(target.Get(), source.Get(), mask.Get()));
    const LockedDib part(blended.Get());
    if (!part) return false;
    DibCopyRect(frame, box.left, box.top, part.Get(), 0, 0, part->biWidth, part->biHeight);
    return true;
}

OwnedDib NextFrame(const TransitionContext& context, DibHandle before, DibHandle canvas, const Rect& box) {
    const LockedDib base(before);
    if (!base) return {};
    OwnedDib frame(DibCreate(base->biWidth, base->biHeight, nullptr, 24));
    const LockedDib locked(frame.Get());
    if (!locked) return {};
    DibCopyRect(locked.Get(), 0, 0, base.Get(), 0, 0, base->biWidth, base->biHeight);
    const bool reached = box.left < box.right && box.top < box.bottom;
    if (reached && !BlendBox(context, canvas, box, locked.Get())) return {};
    return frame;
}

std::int32_t PerturbedDelay(Random& random, std::int64_t delay) {
    const std::int64_t perturb = pluginSettings.TransitionPaintballPerturb;
    if (perturb != 0) delay = std::max<std::int64_t>(random.Draw() % perturb * delay / perturb, 1);
    return static_cast<std::int32_t>(delay);
}

} // namespace

int Paintball(TransitionContext& context) {
    EffectRun run(context);
    const std::int64_t size = pluginSettings.TransitionPaintballSize;
    if (!run || size == 0) return kEffectFailed;
    const CanvasSize picture = {run.Width(), run.Height()};
    const Grid grid(picture, size);
    FreeCells cells(grid.Cells());
    const OwnedDib canvas(DibCreate(2 * picture.width, 2 * picture.height, nullptr, 24));
    const LockedDib locked(canvas.Get());
    if (!cells || !locked) return kEffectFailed;
    ShapeCanvas shapes(run.Window(), locked->biWidth, locked->biHeight, RowView(locked.Get()).Stored());
    if (!shapes) return kEffectFailed;

    Random random(pluginSettings.RandomSeed);
    DibHandle before = context.image;
    while (!cells.Empty()) {
        const Splat splat(grid, cells.Take(random), picture);
        const Rect box = splat.Box(picture);
        splat.Draw(shapes);
        if (!shapes.Finish(box.top * 2, box.bottom * 2)) return kEffectFailed;
        OwnedDib frame = NextFrame(context, before, canvas.Get(), box);
        before = frame.Get();
        if (!run.Emit(std::move(frame), PerturbedDelay(random, run.Delay()))) return kEffectFailed;
    }
    return kEffectDone;
}
std::int64_t PaintballFrames(CanvasSize canvas) {
    const std::int64_t size = pluginSettings.TransitionPaintballSize;
    return size == 0 ? 0 : 1 + Grid(canvas, size).Cells();
}

} // namespace lumafold
