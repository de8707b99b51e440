// Masks drawn hard-edged at twice their size and halved, so that only their edges are grey: white shows the
// picture to come. Each returns a new 24-bit picture that the caller owns, or 0.
#pragma once

#include "image/dib.h"
#include "platform/shapes.h"

namespace lumafold {

/// Draws on a canvas of width x height pixels by `draw(ShapeCanvas&)` and halves it.
template <typename Draw>
DibHandle DrawHalvedMask(WindowHandle window, std::int64_t width, std::int64_t height, Draw draw);

/// The shapes that open from the middle; `percent` above 100 counts as 100.
DibHandle EllipseMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);
DibHandle DiamondMask(WindowHandle window, std::int32_t width, std::int32_t height, std::int64_t percent);

} // namespace lumafold

#include "image/resample.h"
#include "image/row_view.h"

namespace lumafold {

template <typename Draw>
DibHandle DrawHalvedMask(WindowHandle window, std::int64_t width, std::int64_t height, Draw draw) {
    if (width < 1 || height < 1 || width > INT32_MAX || height > INT32_MAX) return 0;
    const OwnedDib canvas(
        DibCreate(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), nullptr, 24));
    if (!canvas) return 0;
    {
        const LockedDib locked(canvas.Get());
        if (!locked) return 0;
        ShapeCanvas shapes(window, locked->biWidth, locked->biHeight, RowView(locked.Get()).Stored());
        if (!shapes) return 0;
        draw(shapes);
        if (!shapes.Finish()) return 0;
    }
    return DibScale(canvas.Get(), 50, 50);
}

} // namespace lumafold
