#include "tools/samples/paint.h"

#include <cmath>

namespace lumafold::samples {
namespace {

constexpr int kSamplesPerAxis = 3;

unsigned Level(double value) { return static_cast<unsigned>(std::lround(Clamp01(value) * 255)); }

Colour AverageAround(const Scene& scene, std::int32_t x, std::int32_t y, double scale) {
    Colour sum;
    for (int j = 0; j < kSamplesPerAxis; ++j) {
        for (int i = 0; i < kSamplesPerAxis; ++i) {
            const Colour colour =
                scene({(x + (i + 0.5) / kSamplesPerAxis) * scale, (y + (j + 0.5) / kSamplesPerAxis) * scale});
            // Clipped before it is averaged: otherwise edges against bright light come out jagged.
            sum = sum + Colour{Clamp01(colour.red), Clamp01(colour.green), Clamp01(colour.blue)};
        }
    }
    return sum * (1.0 / (kSamplesPerAxis * kSamplesPerAxis));
}

double Vignette(double x, double y) {
    const double dx = x / kAspect - 0.5, dy = y - 0.5;
    return 1 - 0.38 * Smooth(0.12, 0.62, dx * dx + dy * dy);
}

} // namespace

OwnedDib Paint(const Scene& scene, std::int32_t width, std::int32_t height) {
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    if (!picture) return picture;
    const double scale = kAspect / width;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const Colour colour = AverageAround(scene, x, y, scale) * Vignette(x * scale, y * scale);
            // One grain for all three channels: film has no coloured speckles, and it breaks up bands in the
            // sky.
            const double grain = (Random(x, y, 901) + Random(x, y, 902) - 1) * 0.010;
            DibSetPixel(*picture, x, y,
                        MakeColour(Level(colour.red + grain), Level(colour.green + grain),
                                   Level(colour.blue + grain)));
        }
    }
    return picture;
}

} // namespace lumafold::samples
