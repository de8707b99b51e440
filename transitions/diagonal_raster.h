// Diagonal raster: diagonal stripes comb the target into place, every other one from a corner at the top,
// those between from the opposite corner.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// Where the upper corner is that the target enters from; the stripes run from that side down to the other.
enum class RasterFrom { Left, Right };

/// Both pictures have 24 bits and the same size; the stripes are `stripeWidth` >= 1 pixels wide in each row.
OwnedDib DiagonalRasterFrame(const DibHeader& source, const DibHeader& target, std::int64_t percent,
                             std::int64_t stripeWidth, RasterFrom from);

template <RasterFrom From>
class DiagonalRaster {
public:
    static std::optional<DiagonalRaster> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    DiagonalRaster(std::int64_t step, std::int64_t stripeWidth) : step_(step), stripeWidth_(stripeWidth) {}

    std::int64_t step_; ///< percent a frame
    std::int64_t stripeWidth_;
};

} // namespace lumafold
