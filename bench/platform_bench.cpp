// What the platform's own arithmetic and shapes cost: nanoseconds a call, and nanoseconds a canvas pixel.
#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "numbers/portable_math.h"
#include "platform/shapes.h"

namespace lumafold {
namespace {

/// Arguments like those of a ripple or a warp, so that no branch is learned by heart.
template <typename Function>
void Measure(benchmark::State& state, double scale, Function function) {
    std::array<double, 1024> arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] =
            static_cast<double>((i * 389) % arguments.size()) / static_cast<double>(arguments.size()) * scale;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(function(arguments[i++ % arguments.size()]));
    }
}

void PlatformSin(benchmark::State& state) {
    Measure(state, 400, [](double x) { return PortableSin(x); });
}
BENCHMARK(PlatformSin);

void PlatformExp(benchmark::State& state) {
    Measure(state, -20, [](double x) { return PortableExp(static_cast<long double>(x)); });
}
BENCHMARK(PlatformExp);

constexpr std::int32_t kWidth = 1280, kHeight = 960;

template <typename Draw>
void MeasureShape(benchmark::State& state, Draw draw) {
    std::vector<std::uint8_t> pixels(std::size_t{kWidth} * kHeight);
    for (auto _ : state) {
        std::fill(pixels.begin(), pixels.end(), 0);
        ShapeCanvas canvas(0, kWidth, kHeight, pixels.data());
        draw(canvas);
        benchmark::DoNotOptimize(canvas.Finish());
        benchmark::ClobberMemory();
    }
    state.counters["ns/pixel"] =
        benchmark::Counter(double{kWidth} * kHeight * 1e-9 * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void ShapesClear(benchmark::State& state) {
    MeasureShape(state, [](ShapeCanvas&) {});
}
BENCHMARK(ShapesClear);

void ShapesFullEllipse(benchmark::State& state) {
    MeasureShape(state, [](ShapeCanvas& canvas) { canvas.Ellipse(0, 0, kWidth, kHeight); });
}
BENCHMARK(ShapesFullEllipse);

void ShapesFullDiamond(benchmark::State& state) {
    constexpr std::array<ShapePoint, 5> kPoints = {
        {{0, kHeight / 2}, {kWidth / 2, 0}, {kWidth, kHeight / 2}, {kWidth / 2, kHeight}, {0, kHeight / 2}}};
    MeasureShape(state, [&](ShapeCanvas& canvas) { canvas.Polygon(kPoints); });
}
BENCHMARK(ShapesFullDiamond);

void ShapesHugeEllipse(benchmark::State& state) {
    MeasureShape(state, [](ShapeCanvas& canvas) { canvas.Ellipse(-131072, -131072, 131072, 400); });
}
BENCHMARK(ShapesHugeEllipse);

} // namespace
} // namespace lumafold
