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
Palette BenchPalette(int number, const DibHeader& picture) {
    Palette palette;
    BuildFixedPalette(&palette, nullptr, number);
    if (number != 9) return palette;
    for (int i = 0; i < 256; ++i)
        palette[static_cast<std::size_t>(i)] = RgbOf(DibGetPixel(picture, i % 16 * 40 + 7, i / 16 * 30 + 11));
    return palette;
}

void ColourCopy(benchmark::State& state) {
    const OwnedDib picture = PhotoPicture(1);
    OwnedDib copy = PhotoPicture(2);
    const ConstRowView source = picture.Rows();
    const RowView target = copy.Rows();
    for (auto _ : state) {
        std::memcpy(target.Stored(), source.Stored(), source.StoredBytes());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(ColourCopy);

template <Dithering kDithering>
void ColourReduce(benchmark::State& state) {
    const OwnedDib picture = PhotoPicture(1);
    const Remapper remapper(BenchPalette(static_cast<int>(state.range(0)), *picture),
                            static_cast<int>(state.range(1)), 256, {kDithering, state.range(2) != 0, 20, 20});
    for (auto _ : state) {
        const OwnedDib reduced = remapper.Reduce(*picture);
        benchmark::DoNotOptimize(reduced.Get());
    }
    CountPixels(state);
}
BENCHMARK(ColourReduce<Dithering::None>)
    ->Name("ColourRemap")
    ->ArgNames({"palette", "bits", "fast"})
    ->Args({6, 8, 1})
    ->Args({1, 4, 1})
    ->Args({0, 1, 1});
BENCHMARK(ColourReduce<Dithering::Diffused>)
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
    const Palette palette = BenchPalette(static_cast<int>(state.range(0)), *PhotoPicture(1));
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
            const Remapper remapper(BenchPalette(5, *picture), 8, 216, {Dithering::Diffused, true, 20, 20});
            picture = DibToTrueColour(*remapper.Reduce(*picture));
        }
        FrameListAddImage(*frames, std::move(picture), 1);
    }
    for (auto _ : state) {
        Palette palette;
        int count = static_cast<int>(state.range(1));
        benchmark::DoNotOptimize(ComputeOptimalPalette(*frames, count, palette, Runner()));
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
    OwnedDib picture = PhotoPicture(1);
    Random random(3);
    for (std::int32_t y = 0; y < bench::kHeight; ++y) {
        for (std::int32_t x = 0; x < bench::kWidth; ++x) {
            if ((random.Draw() >> 5) % 8 < changed) DibSetPixel(*picture, x, y, DibGetPixel(*other, x, y));
        }
    }
    FrameRecord frame{};
    frame.image = picture.Release();
    return frame;
}

void ColourMark(benchmark::State& state) {
    const OwnedDib before = PhotoPicture(1);
    FrameRecord frame = ChangedFrame(static_cast<unsigned>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(MarkUnchanged(before.Get(), frame, 0));
    CountPixels(state);
    FrameRecordRelease(frame);
}
BENCHMARK(ColourMark)->ArgName("changed")->Arg(0)->Arg(4)->Arg(8);

void ColourPaint(benchmark::State& state) {
    const OwnedDib before = PhotoPicture(1);
    FrameRecord frame = ChangedFrame(static_cast<unsigned>(state.range(0)));
    MarkUnchanged(before.Get(), frame, 0);
    const auto bits = static_cast<int>(state.range(1));
    if (bits <= 8) {
        const OwnedDib whole(frame.image);
        const Remapper remapper(BenchPalette(6, *whole), bits, 256, {Dithering::None, true, 20, 20});
        frame.image = remapper.Reduce(*whole).Release();
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(PaintUnchanged(frame, bits <= 8 ? 1 : -1, 0));
    CountPixels(state);
    FrameRecordRelease(frame);
}
BENCHMARK(ColourPaint)
    ->ArgNames({"changed", "bits"})
    ->Args({0, 8})
    ->Args({4, 8})
    ->Args({4, 4})
    ->Args({4, 24});

} // namespace
