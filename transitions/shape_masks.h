// Masks drawn hard-edged at twice their size and halved, so that only their edges are grey: white shows the
// picture to come. Each is empty when it could not be drawn.
#pragma once

#include "platform/shapes.h"
#include "transitions/mask.h"

namespace lumafold {

/// The shapes that open from the middle; `percent` above 100 counts as 100.
Mask EllipseMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);
Mask DiamondMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);

/// `box` of a mask of half the size, each of its pixels from four of `fine`: two and two side by side are
/// averaged first, then these, both truncated.
Mask Halved(const Mask& fine, const Rect& box);

/// Draws on a canvas of width x height pixels by `draw(ShapeCanvas&)` and halves it.
template <typename Draw>
Mask DrawHalvedMask(WindowHandle window, std::int64_t width, std::int64_t height, Draw draw) {
    Mask fine(width, height);
    if (!fine) return {};
    ShapeCanvas shapes(window, fine.Width(), fine.Height(), fine.Row(0));
    if (!shapes) return {};
    draw(shapes);
    if (!shapes.Finish()) return {};
    return Halved(fine, {0, 0, fine.Width() / 2, fine.Height() / 2});
}

} // namespace lumafold
