#include "transitions/paintball.h"

#include <cmath>

#include "image/resample.h"
#include "transitions/compositing.h"

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
    : picture_(DibCreate(std::int64_t{2} * picture.width, std::int64_t{2} * picture.height, nullptr, 24)) {
    if (picture_) {
        shapes_.emplace(window, picture_->biWidth, picture_->biHeight, picture_.Rows().Stored());
    }
}

OwnedDib PaintballMask(SplatCanvas& canvas, const Splat& splat, const Rect& box) {
    const auto at = [](std::int64_t v) { return static_cast<std::int32_t>(v); };
    canvas.Shapes().Ellipse(at(splat.x - splat.radius), at(splat.y - splat.radius),
                            at(splat.x + splat.radius), at(splat.y + splat.radius));
    const Rect fine = {box.left * 2, box.top * 2, box.right * 2, box.bottom * 2};
    if (!canvas.Shapes().Finish(fine.top, fine.bottom)) return {};
    const OwnedDib part = DibCropRect(canvas.Picture(), fine, 0);
    return part ? DibScale(*part, 50, 50) : OwnedDib();
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

/// Source and target within the box, blended through the mask there, laid over the current picture.
bool Paintball::Painter::BlendBox(const OwnedDib& mask, const Rect& box) {
    if (!mask) return false;
    const OwnedDib source = DibCropRect(gap_.source, box, 0), target = DibCropRect(gap_.target, box, 0);
    if (!source || !target) return false;
    const OwnedDib blended = DibMaskBlend(*target, *source, *mask);
    if (!blended) return false;
    DibCopyRect(*current_, box.left, box.top, *blended, 0, 0, blended->biWidth, blended->biHeight);
    return true;
}

OwnedDib Paintball::Painter::Frame(std::int64_t) {
    const Splat splat(grid_, cells_.Take(random_), gap_.size);
    const Rect box = splat.Box(gap_.size);
    const bool reached = box.left < box.right && box.top < box.bottom;
    if (reached && !BlendBox(PaintballMask(canvas_, splat, box), box)) return {};
    return DibCopy(*current_);
}

/// Shortened by chance, but not to nothing.
std::int32_t Paintball::Painter::Delay(std::int64_t, std::int32_t delay) {
    const std::int64_t perturb = gap_.settings.TransitionPaintballPerturb;
    if (perturb == 0) return delay;
    return static_cast<std::int32_t>(std::max<std::int64_t>(random_.Draw() % perturb * delay / perturb, 1));
}

} // namespace lumafold
