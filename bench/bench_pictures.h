// Pictures for the benchmarks, and their unit: nanoseconds of CPU per pixel.
#pragma once

#include <benchmark/benchmark.h>

#include "image/dib.h"
#include "transitions/random.h"

namespace lumafold::bench {

inline constexpr std::int32_t kWidth = 640, kHeight = 480;
inline constexpr double kPixels = double{kWidth} * kHeight;

/// Smooth gradients with a little grain, as photographs have.
inline OwnedDib PhotoPicture(std::uint32_t seed, std::int32_t width = kWidth, std::int32_t height = kHeight) {
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    Random random(seed);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const std::uint32_t grain = random.Draw() >> 10;
            const auto level = [&](std::int32_t ramp, unsigned shift) {
                return static_cast<unsigned>((ramp + static_cast<std::int32_t>(seed % 97)) % 240) +
                       ((grain >> shift) & 7);
            };
            DibSetPixel(*picture, x, y,
                        MakeColour(level((x + y) / 5, 0), level(y / 3 + x / 9, 4),
                                   level((width - x + 2 * y) / 7, 8)));
        }
    }
    return picture;
}

/// Reports what one iteration cost for each of `pixels`.
inline void CountPixels(benchmark::State& state, double pixels = kPixels) {
    state.counters["ns/pixel"] =
        benchmark::Counter(pixels * 1e-9 * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

} // namespace lumafold::bench
