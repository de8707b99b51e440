// Pictures before they are files: premultiplied light with its own cover, drawn by asking for the colour of
// points and smoothed by asking often.
#pragma once

#include <functional>
#include <vector>

#include "resources/art/paint.h"

namespace lumafold::art {

/// Light that a point sends, from 0 to 1, and how much of what lies behind it hides.
struct Sample {
    paint::Colour light;
    double cover = 1;
};

struct Surface {
    int width, height;
    std::vector<Sample> pixels; ///< rows from the top
    const Sample& At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

/// Points are in pixels from the top left corner; every pixel is the average of `perAxis` squared of them.
Surface Draw(int width, int height, int perAxis, const std::function<Sample(paint::Point)>& scene);

} // namespace lumafold::art
