#include "resources/art/surface.h"

namespace lumafold::art {
namespace {

Sample AverageAt(int x, int y, int perAxis, const std::function<Sample(paint::Point)>& scene) {
    Sample sum{{}, 0};
    for (int j = 0; j < perAxis; ++j) {
        for (int i = 0; i < perAxis; ++i) {
            const Sample sample = scene({x + (i + 0.5) / perAxis, y + (j + 0.5) / perAxis});
            sum.light = sum.light + sample.light;
            sum.cover += sample.cover;
        }
    }
    const double share = 1.0 / (perAxis * perAxis);
    return {sum.light * share, sum.cover * share};
}

} // namespace

Surface Draw(int width, int height, int perAxis, const std::function<Sample(paint::Point)>& scene) {
    Surface surface{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            surface.pixels.push_back(AverageAt(x, y, perAxis, scene));
    }
    return surface;
}

} // namespace lumafold::art
