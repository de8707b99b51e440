#include "transitions/paintball.h"

#include <cmath>

#include "transitions/compositing.h"
#include "transitions/shape_masks.h"

namespace lumafold {

Splat::Splat(const SplatGrid& grid, std::int64_t cell, CanvasSize picture)
    : x(cell % grid.columns * grid.spacing * 2), y(cell / grid.columns * grid.spacing * 2) {
    const double side = 2.0 * static_cast<double>(grid.spacing);
    // What covers the canvas from any point of the grid is large enough.
    const std::int64_t largest = 4 * (std::int64_t{picture.width} + picture.height);
    radius = static_cast<std::int64_t>(
        std::min(std::ceil(std::sqrt(side * side + side * side) * 0.5), static_cast<double>(largest)));
}

Rect Splat::Box(CanvasSize picture) const {
    const auto first = [this](std::int64_t at) {
        return static_cast<std::int32_t>(std::max<std::int64_t>(at - radius, 0) / 2);
    };
    const auto end = [this](std::int64_t at, std::int64_t size) {
        return static_cast<std::int32_t>(std::min((at + radius + 1) / 2, size));
    };
    return {first(x), first(y), end(x, picture.width), end(y, picture.height)};
}

SplatCanvas::SplatCanvas(WindowHandle window, CanvasSize picture)
    : pixels_(std::int64_t{2} * picture.width, std::int64_t{2} * picture.height) {
    if (pixels_) shapes_.emplace(window, pixels_.Width(), pixels_.Height(), pixels_.Row(0));
}

Mask PaintballMask(SplatCanvas& canvas, const Splat& splat, const Rect& box) {
    const auto at = [](std::int64_t v) { return static_cast<std::int32_t>(v); };
    canvas.Shapes().Ellipse(at(splat.x - splat.radius), at(splat.y - splat.radius),
                            at(splat.x + splat.radius), at(splat.y + splat.radius));
    return canvas.Shapes().Finish(2 * box.top, 2 * box.bottom) ? Halved(canvas.Pixels(), box) : Mask();
}

FreeCells::FreeCells(std::int64_t count) : cells_(static_cast<std::size_t>(count)), count_(cells_.size()) {
    for (std::size_t i = 0; i < count_; ++i)
        cells_[i] = static_cast<std::uint32_t>(i);
}

std::int64_t FreeCells::Take(Random& random) {
    const std::size_t place = random.Draw() % count_;
    const std::uint32_t cell = cells_[place];
    // The later ones keep their order: it decides what the next draws hit.
    --count_;
    std::memmove(&cells_[place], &cells_[place] + 1, (count_ - place) * sizeof(cell));
    return cell;
}

std::optional<Paintball> Paintball::Plan(const PluginSettings& settings, CanvasSize canvas) {
    if (settings.TransitionPaintballSize == 0) return {};
    return Paintball(SplatGrid(canvas, settings.TransitionPaintballSize));
}

Paintball::Painter::Painter(const SplatGrid& grid, const Gap& gap)
    : grid_(grid), gap_(gap), random_(gap.settings.RandomSeed), cells_(grid.Cells()),
      canvas_(gap.window, gap.size), current_(DibCopy(gap.source)) {}

OwnedDib Paintball::Painter::Frame(std::int64_t) {
    const Splat splat(grid_, cells_.Take(random_), gap_.size);
    const Rect box = splat.Box(gap_.size);
    if (box.left < box.right && box.top < box.bottom) {
        const Mask mask = PaintballMask(canvas_, splat, box);
        if (!mask) return {};
        MaskBlendBox(gap_.target, gap_.source, mask, box, *current_);
    }
    return DibCopy(*current_);
}

/// Shortened by chance, but not to nothing.
std::int32_t Paintball::Painter::Delay(std::int64_t, std::int32_t delay) {
    const std::int64_t perturb = gap_.settings.TransitionPaintballPerturb;
    if (perturb == 0) return delay;
    return static_cast<std::int32_t>(std::max<std::int64_t>(random_.Draw() % perturb * delay / perturb, 1));
}

} // namespace lumafold
