// Paintball: round splats of the target land one a frame on random points of a grid, until it covers the
// source. Splats only add to the mask, so a frame is the one before, blended anew where its splat landed.
#pragma once

#include "platform/shapes.h"
#include "transitions/gap.h"
#include "transitions/mask.h"
#include "transitions/random.h"

namespace lumafold {

/// The points the splats land on. Every axis has one cell more than it has whole ones, even where nothing is
/// left over (docs/quirks.md 15).
struct SplatGrid {
    std::int64_t spacing, columns, rows;

    SplatGrid(CanvasSize picture, std::int64_t size)
        : spacing(size), columns(picture.width / size + 1), rows(picture.height / size + 1) {}
    std::int64_t Cells() const { return columns * rows; }
};

/// A circle on the canvas of all splats, which is twice as fine as the picture so that halving softens the
/// edges.
struct Splat {
    std::int64_t x, y, radius;

    /// Its circles meet in the middle of the cells, so that the last ones leave nothing uncovered.
    Splat(const SplatGrid& grid, std::int64_t cell, CanvasSize picture);
    /// The pixels of the picture it can reach; right and bottom may lie before left and top.
    Rect Box(CanvasSize picture) const;
};

/// Where all splats so far are, twice as fine as the picture.
class SplatCanvas {
public:
    /// Check it before use.
    SplatCanvas(WindowHandle window, CanvasSize picture);
    explicit operator bool() const { return shapes_ && *shapes_; }

    ShapeCanvas& Shapes() { return *shapes_; }
    const Mask& Pixels() const { return pixels_; }

private:
    Mask pixels_;
    std::optional<ShapeCanvas> shapes_; ///< draws into pixels_
};

/// Adds a splat and returns the mask of all within `box`, its part of the picture: white where splats are.
Mask PaintballMask(SplatCanvas& canvas, const Splat& splat, const Rect& box);

/// The cells not hit yet, in reading order.
class FreeCells {
public:
    explicit FreeCells(std::int64_t count);
    explicit operator bool() const { return static_cast<bool>(cells_); }
    /// One of them by chance, no longer free; not when none is left.
    std::int64_t Take(Random& random);

private:
    Array<std::uint32_t> cells_;
    std::size_t count_;
};

class Paintball {
public:
    class Painter {
    public:
        Painter(const SplatGrid& grid, const Gap& gap);
        explicit operator bool() const { return cells_ && canvas_ && current_; }
        OwnedDib Frame(std::int64_t index);
        std::int32_t Delay(std::int64_t index, std::int32_t delay);

    private:
        const SplatGrid& grid_;
        const Gap& gap_;
        Random random_;
        FreeCells cells_;
        SplatCanvas canvas_;
        OwnedDib current_; ///< the picture with the splats so far
    };

    static std::optional<Paintball> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const { return grid_.Cells(); }
    Painter Start(const Gap& gap) const { return Painter(grid_, gap); }

private:
    explicit Paintball(const SplatGrid& grid) : grid_(grid) {}

    SplatGrid grid_;
};

} // namespace lumafold
