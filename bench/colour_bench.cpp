// Colour reduction of a photo-like 640x480 picture, per pixel, beside the copy of its bytes; and
// what the tables of one palette cost. Then what concerns many such frames: a palette made for
// them, and their differences marked and painted.
#include "bench/bench_pictures.h"
#include "colour/palettes.h"
#include "colour/quantizer.h"
#include "colour/remap.h"
#include "colour/supercompression.h"
#include "image/resample.h"
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
        const PixelValue c = DibGetPixel(*dib, i % 16 * 40 + 7, i / 16 * 30 + 11);
        palette[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(RedOf(c)),
                                                static_cast<std::uint8_t>(GreenOf(c)),
                                                static_cast<std::uint8_t>(BlueOf(c))};
    }
    return palette;
}

void ColourCopy(benchmark::State& state) {
    const OwnedDib picture = PhotoPicture(1), copy = PhotoPicture(2);
    const LockedDib from(picture.Get()), to(copy.Get());
    const ConstRowView source(*from);
    const RowView target(*to);
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

/// Frames of many colours, or of the 216 a fixed palette has, which are kept as they are.
void ColourQuantize(benchmark::State& state) {
    const auto number = static_cast<std::int32_t>(state.range(0));
    OwnedFrameList frames;
    for (std::int32_t i = 0; i < number; ++i) {
        OwnedDib picture = PhotoPicture(static_cast<std::uint32_t>(1 + i));
        if (state.range(2) != 0) {
            const OwnedDib reduced(DitherImage(picture.Get(), BenchPalette(5, 0), 8, 216));
            picture = OwnedDib(DibToTrueColour(reduced.Get()));
        }
        FrameListAddImage(*frames, picture.Release(), 1);
    }
    for (auto _ : state) {
        Palette palette;
        int count = static_cast<int>(state.range(1));
        benchmark::DoNotOptimize(ComputeOptimalPalette(*frames, count, palette));
        benchmark::DoNotOptimize(palette);
    }
    CountPixels(state, bench::kPixels * number);
}
BENCHMARK(ColourQuantize)
    ->ArgNames({"frames", "colours", "few"})
    ->Args({1, 255, 0})
    ->Args({1, 256, 0})
    ->Args({24, 255, 0})
    ->Args({24, 256, 0})
    ->Args({24, 255, 1})
    ->Unit(benchmark::kMillisecond);

/// A frame's record with the picture; `changed` of 8 pixels differ from PhotoPicture(1), here and there.
FrameRecord ChangedFrame(unsigned changed) {
    const OwnedDib other = PhotoPicture(2);
    FrameRecord frame{};
    frame.image = PhotoPicture(1).Release();
    const LockedDib from(other.Get()), to(frame.image);
    Random random(3);
    for (std::int32_t y = 0; y < bench::kHeight; ++y) {
        for (std::int32_t x = 0; x < bench::kWidth; ++x) {
            if ((random.Draw() >> 5) % 8 < changed)
                DibSetPixel(*to, x, y, DibGetPixel(*from, x, y));
        }
    }
    return frame;
}

/// Two frames in turn, so that there is always something to mark.
void ColourMark(benchmark::State& state) {
    FrameRecord frames[] = {ChangedFrame(0), ChangedFrame(static_cast<unsigned>(state.range(0)))};
    OwnedDib reference;
    MarkUnchanged(reference, frames[0], 0);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(MarkUnchanged(reference, frames[i ^= 1], 0));
    CountPixels(state);
    for (FrameRecord& frame : frames)
        FrameRecordRelease(frame);
}
BENCHMARK(ColourMark)->ArgName("changed")->Arg(0)->Arg(4)->Arg(8);

void ColourPaint(benchmark::State& state) {
    OwnedDib reference;
    FrameRecord first = ChangedFrame(0), frame = ChangedFrame(static_cast<unsigned>(state.range(0)));
    MarkUnchanged(reference, first, 0);
    MarkUnchanged(reference, frame, 0);
    const auto bits = static_cast<int>(state.range(1));
    if (bits <= 8) {
        const DibHandle reduced = RemapImage(frame.image, BenchPalette(6, 0), bits, 256);
        GlobalDestroy(std::exchange(frame.image, reduced));
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(PaintUnchanged(frame, bits <= 8 ? 1 : -1, 0));
    CountPixels(state);
    FrameRecordRelease(first);
    FrameRecordRelease(frame);
}
BENCHMARK(ColourPaint)
    ->ArgNames({"changed", "bits"})
    ->Args({0, 8})
    ->Args({4, 8})
    ->Args({4, 4})
    ->Args({4, 24});

} // namespace
