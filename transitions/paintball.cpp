// Paintball: round splats of the target land one a frame on random points of a grid, until it covers the
// source. Splats only add to the mask, so a frame is the one before, blended anew where its splat landed.
#include <cmath>

#include "transitions/compositing.h"
#include "transitions/drawing_list.h"
#include "transitions/random.h"
#include "transitions/run.h"
#include "transitions/shape_masks.h"

namespace lumafold {
namespace {

/// A circle on the canvas of all splats, which is twice as fine as the picture so that halving softens the
/// edges.
struct Splat {
    std::int64_t x, y, radius;

    /// The pixels of a picture it can reach; right and bottom may lie before left and top.
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

/// The points the splats land on, `spacing` pixels apart. Every axis has one cell more than it has whole
/// ones, even where nothing is left over (docs/quirks.md 15).
struct SplatGrid {
    std::int64_t spacing, columns, rows;

    SplatGrid(CanvasSize picture, std::int64_t size)
        : spacing(size), columns(picture.width / size + 1), rows(picture.height / size + 1) {}

    /// Circles meet in the middle of the cells, so that the last ones leave nothing uncovered.
    Splat At(std::int64_t cell, CanvasSize picture) const {
        const double side = 2.0 * static_cast<double>(spacing);
        const double radius = std::ceil(std::sqrt(side * side + side * side) * 0.5);
        // What covers the canvas from any point of the grid is large enough.
        const double largest = 4.0 * picture.width + 4.0 * picture.height;
        return {cell % columns * spacing * 2, cell / columns * spacing * 2,
                static_cast<std::int64_t>(std::min(radius, largest))};
    }
};

/// Where all splats so far are, twice as fine as the picture.
struct SplatCanvas {
    Mask pixels;
    std::optional<ShapeCanvas> shapes; ///< draws into the pixels

    SplatCanvas(WindowHandle window, CanvasSize picture)
        : pixels(std::int64_t{2} * picture.width, std::int64_t{2} * picture.height) {
        if (pixels) shapes.emplace(window, pixels.Width(), pixels.Height(), pixels.Row(0));
    }
    explicit operator bool() const { return shapes && *shapes; }
};

/// Adds a splat and returns the mask of all within `box`, its part of the picture: white where splats are.
Mask PaintballMask(SplatCanvas& canvas, const Splat& splat, const Rect& box) {
    const auto at = [](std::int64_t v) { return static_cast<std::int32_t>(v); };
    canvas.shapes->Ellipse(at(splat.x - splat.radius), at(splat.y - splat.radius), at(splat.x + splat.radius),
                           at(splat.y + splat.radius));
    return canvas.shapes->Finish(2 * box.top, 2 * box.bottom) ? Halved(canvas.pixels, box) : Mask();
}

struct Paintball {
    SplatGrid grid;
    std::uint32_t perturb; ///< of the delays, as the setting

    static std::optional<Paintball> Plan(const PluginSettings& settings, CanvasSize canvas) {
        if (settings.TransitionPaintballSize == 0) return {};
        return Paintball{SplatGrid(canvas, settings.TransitionPaintballSize),
                         settings.TransitionPaintballPerturb};
    }
    static RenderNeed Need(const PluginSettings&) { return {3, 3}; }
    std::int64_t Frames() const { return grid.columns * grid.rows; }

    struct State {
        Random random;
        DrawingList<std::uint32_t> cells; ///< not hit yet, in reading order
        SplatCanvas canvas;
        OwnedDib picture; ///< with the splats so far

        State(const Gap& gap, std::int64_t count)
            : random(gap.settings.RandomSeed), cells(count), canvas(gap.window, gap.size),
              picture(DibCopy(gap.source)) {
            for (std::int64_t cell = 0; cells && cell < count; ++cell)
                cells.Append(static_cast<std::uint32_t>(cell));
        }
        explicit operator bool() const { return cells && canvas && picture; }
    };
    State Start(const Gap& gap) const { return State(gap, Frames()); }

    OwnedDib Frame(const Gap& gap, State& state, std::int64_t) const {
        const std::uint32_t cell = state.cells.Take(state.random.Draw() % state.cells.Count());
        const Splat splat = grid.At(cell, gap.size);
        const Rect box = splat.Box(gap.size);
        if (box.left < box.right && box.top < box.bottom) {
            const Mask mask = PaintballMask(state.canvas, splat, box);
            if (!mask) return {};
            MaskBlendBox(gap.target, gap.source, mask, box, *state.picture);
        }
        return DibCopy(*state.picture);
    }

    /// Shortened by chance, but not to nothing.
    std::int32_t Delay(State& state, std::int64_t, std::int32_t delay) const {
        if (perturb == 0) return delay;
        const std::int64_t share = state.random.Draw() % perturb;
        return static_cast<std::int32_t>(std::max<std::int64_t>(share * delay / perturb, 1));
    }
};

} // namespace

constinit const Effect kPaintball = EffectOf<Paintball>();

} // namespace lumafold
