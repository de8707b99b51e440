// Pictures and compositing at 640x480, beside a plain copy of the same bytes and a plain byte cross-fade.
#include <cstring>
#include <vector>

#include "bench/bench_pictures.h"
#include "image/resample.h"
#include "image/row_view.h"
#include "transitions/compositing.h"
#include "transitions/shape_masks.h"

namespace lumafold::bench {
namespace {

void Memcpy(benchmark::State& state) {
    std::vector<std::uint8_t> from(kWidth * kHeight * 3, 1), to(from.size());
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(Memcpy);

void PlainByteCrossfade(benchmark::State& state) {
    std::vector<std::uint8_t> a(kWidth * kHeight * 3, 100), b(a.size(), 200), to(a.size());
    for (auto _ : state) {
        for (std::size_t i = 0; i < to.size(); ++i) {
            to[i] = static_cast<std::uint8_t>((a[i] * 77 + b[i] * 179) >> 8);
        }
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(PlainByteCrossfade);

void Accessors(benchmark::State& state) {
    OwnedDib picture = PhotoPicture(1);
    for (auto _ : state) {
        for (std::int32_t y = 0; y < kHeight; ++y) {
            for (std::int32_t x = 0; x < kWidth; ++x) {
                DibSetPixel(*picture, x, y, DibGetPixel(*picture, x, y));
            }
        }
    }
    CountPixels(state);
}
BENCHMARK(Accessors);

void CopyRect(benchmark::State& state) {
    const OwnedDib from = PhotoPicture(1);
    OwnedDib to = PhotoPicture(2);
    for (auto _ : state) {
        DibCopyRect(*to, 0, 0, *from, 0, 0, kWidth, kHeight);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(CopyRect);

void Duplicate(benchmark::State& state) {
    const OwnedDib from = PhotoPicture(1);
    for (auto _ : state) {
        const OwnedDib copy(GlobalDuplicate(from.Get()));
        benchmark::DoNotOptimize(copy.Get());
    }
    CountPixels(state);
}
BENCHMARK(Duplicate);

void Scale(benchmark::State& state) {
    const auto percent = static_cast<std::int32_t>(state.range(0));
    const OwnedDib from = PhotoPicture(1);
    for (auto _ : state) {
        const OwnedDib scaled = DibScale(*from, percent, percent);
        benchmark::DoNotOptimize(scaled.Get());
    }
    CountPixels(state);
}
BENCHMARK(Scale)->Arg(50)->Arg(37)->Arg(150);

void DrawMask(benchmark::State& state) {
    for (auto _ : state) {
        const Mask mask = EllipseMask(0, kWidth, kHeight, 60);
        benchmark::DoNotOptimize(mask.Row(0));
    }
    CountPixels(state);
}
BENCHMARK(DrawMask)->Name("Mask");

void BlurColour(benchmark::State& state) {
    const OwnedDib picture = PhotoPicture(1);
    for (auto _ : state) {
        const OwnedDib blurred = DibGaussianBlur(*picture, 100, 100);
        benchmark::DoNotOptimize(blurred.Get());
    }
    CountPixels(state);
}
BENCHMARK(BlurColour)->Name("Blur/colour");

void BlurMask(benchmark::State& state) {
    const Mask sharp = EllipseMask(0, kWidth, kHeight, 60);
    for (auto _ : state) {
        Mask mask(kWidth, kHeight);
        std::memcpy(mask.Row(0), sharp.Row(0), kWidth * kHeight);
        const Mask blurred = MaskGaussianBlur(std::move(mask), 100, 100);
        benchmark::DoNotOptimize(blurred.Row(0));
    }
    CountPixels(state);
}
BENCHMARK(BlurMask)->Name("Blur/grey_mask");

void Crossfade(benchmark::State& state) {
    const OwnedDib from = PhotoPicture(1), to = PhotoPicture(2);
    for (auto _ : state) {
        const OwnedDib faded = DibCrossfade(*from, *to, 100);
        benchmark::DoNotOptimize(faded.Get());
    }
    CountPixels(state);
}
BENCHMARK(Crossfade);

void BlendThroughPicture(benchmark::State& state) {
    const OwnedDib from = PhotoPicture(1), to = PhotoPicture(2), mask = PhotoPicture(3);
    for (auto _ : state) {
        const OwnedDib blended = DibMaskBlend(*from, *to, *mask);
        benchmark::DoNotOptimize(blended.Get());
    }
    CountPixels(state);
}
BENCHMARK(BlendThroughPicture)->Name("MaskBlend/colour");

void BlendThroughMask(benchmark::State& state) {
    const OwnedDib from = PhotoPicture(1), to = PhotoPicture(2);
    const Mask mask = MaskGaussianBlur(EllipseMask(0, kWidth, kHeight, 60), 100, 100);
    for (auto _ : state) {
        const OwnedDib blended = MaskBlend(*from, *to, mask);
        benchmark::DoNotOptimize(blended.Get());
    }
    CountPixels(state);
}
BENCHMARK(BlendThroughMask)->Name("MaskBlend/grey_mask");

} // namespace
} // namespace lumafold::bench
