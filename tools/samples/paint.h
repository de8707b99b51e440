// What the sample pictures are painted with besides colours, noise and outlines: a renderer that
// asks a scene for the colour of a point and smooths the edges by asking often.
#pragma once

#include <functional>

#include "image/dib.h"
#include "resources/art/paint.h"

namespace lumafold::samples {

using namespace paint;

/// A picture is 1.5 wide and 1 high whatever its pixels are, y downwards.
inline constexpr double kAspect = 1.5;

using Scene = std::function<Colour(Point)>;
/// A picture at 24 bits with a light vignette and the finest grain, or none when memory is short.
OwnedDib Paint(const Scene& scene, std::int32_t width, std::int32_t height);

Scene DawnOverMountains();
Scene LanternsOnNightWater();
Scene PaperBoats();

} // namespace lumafold::samples
