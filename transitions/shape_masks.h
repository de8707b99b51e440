// Masks drawn hard-edged at twice their size and halved, so that only their edges are grey: white shows the
// picture to come. Each is a new 24-bit picture, empty when it could not be drawn.
#pragma once

#include "image/resample.h"
#include "platform/shapes.h"

namespace lumafold {

/// The shapes that open from the middle; `percent` above 100 counts as 100.
OwnedDib EllipseMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);
OwnedDib DiamondMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);

/// Draws on a canvas of width x height pixels by `draw(ShapeCanvas&)` and halves it.
template <typename Draw>
OwnedDib DrawHalvedMask(WindowHandle window, std::int64_t width, std::int64_t height, Draw draw) {
    if (width < 1 || height < 1) return {};
    OwnedDib canvas = DibCreate(width, height, nullptr, 24);
    if (!canvas) return {};
    ShapeCanvas shapes(window, canvas->biWidth, canvas->biHeight, canvas.Rows().Stored());
    if (!shapes) return {};
    draw(shapes);
    return shapes.Finish() ? DibScale(*canvas, 50, 50) : OwnedDib();
}

} // namespace lumafold
