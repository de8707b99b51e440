// Colour reduction of a photo-like 640x480 picture, per pixel, beside the copy of its bytes; and
// what the tables of one palette cost.
#include "bench/bench_pictures.h"
#include "colour/palettes.h"
#include "colour/remap.h"
#include "image/row_view.h"
#include "settings/settings.h"

namespace {

using namespace lumafold;
using bench::CountPixels;
using bench::PhotoPicture;

/// 0 to 8 are the fixed palettes; 9 holds 256 colours of the picture itself, as a computed palette nearly
/// does.
Palette BenchPalette(int number, DibHandle picture) {
    Palette palette;
    BuildFixedPalette(&palette, nullptr, number);
    if (number != 9) return palette;
    const LockedDib dib(picture);
    for (int i = 0; i < 256; ++i) {
        const PixelValue c = DibGetPixel(dib.Get(), i % 16 * 40 + 7, i / 16 * 30 + 11);
        palette[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(RedOf(c)),
                                                static_cast<std::uint8_t>(GreenOf(c)),
                                                static_cast<std::uint8_t>(BlueOf(c))};
    }
    return palette;
}

void ColourCopy(benchmark::State& state) {
    const OwnedDib picture = PhotoPicture(1), copy = PhotoPicture(2);
    const LockedDib from(picture.Get()), to(copy.Get());
    const ConstRowView source(from.Get());
    const RowView target(to.Get());
    for (auto _ : state) {
        std::memcpy(target.Stored(), source.Stored(), source.StoredBytes());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(ColourCopy);

template <DibHandle (Remapper::*kReduce)(DibHandle)>
void ColourReduce(benchmark::State& state) {
    const PluginSettings saved = pluginSettings;
    pluginSettings.FastRemap = static_cast<std::uint32_t>(state.range(2));
    const OwnedDib picture = PhotoPicture(1);
    Remapper remapper(BenchPalette(static_cast<int>(state.range(0)), picture.Get()),
                      static_cast<int>(state.range(1)), 256);
    for (auto _ : state) {
        const OwnedDib reduced((remapper.*kReduce)(picture.Get()));
        benchmark::DoNotOptimize(reduced.Get());
    }
    CountPixels(state);
    pluginSettings = saved;
}
BENCHMARK(ColourReduce<&Remapper::Remap>)
    ->Name("ColourRemap")
    ->ArgNames({"palette", "bits", "fast"})
    ->Args({6, 8, 1})
    ->Args({1, 4, 1})
    ->Args({0, 1, 1});
BENCHMARK(ColourReduce<&Remapper::Dither>)
    ->Name("ColourDither")
    ->ArgNames({"palette", "bits", "fast"})
    ->Args({6, 8, 1})
    ->Args({9, 8, 1})
    ->Args({1, 4, 1})
    ->Args({0, 1, 1})
    ->Args({6, 8, 0})
    ->Args({7, 8, 0})
    ->Args({8, 8, 0})
    ->Args({9, 8, 0})
    ->Args({1, 4, 0});

/// The cache of 32768 cells from nothing, in time per palette.
void ColourCacheBuild(benchmark::State& state) {
    const Palette palette = BenchPalette(static_cast<int>(state.range(0)), PhotoPicture(1).Get());
    for (auto _ : state) {
        NearestSearch search;
        benchmark::DoNotOptimize(search.Build(palette, 256));
        const Array<std::uint8_t> cache = BuildLookupCache(search);
        benchmark::DoNotOptimize(cache.data());
    }
}
BENCHMARK(ColourCacheBuild)
    ->ArgName("palette")
    ->Arg(1)
    ->Arg(6)
    ->Arg(7)
    ->Arg(8)
    ->Arg(9)
    ->Unit(benchmark::kMicrosecond);

} // namespace
