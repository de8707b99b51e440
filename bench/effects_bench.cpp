// Every row of the table at 640x480 with default settings: nanoseconds of CPU per pixel and frame.
#include "bench/bench_pictures.h"
#include "image/frame_list.h"
#include "transitions/table.h"

namespace lumafold::bench {
namespace {

/// Appending into a list that is released now and then, as rows of over a thousand frames would fill the
/// memory.
void Effect(benchmark::State& state, int row) {
    const OwnedDib source = PhotoPicture(1), target = PhotoPicture(40);
    double frames = 0;
    for (auto _ : state) {
        OwnedFrameList list;
        TransitionContext context{};
        context.delay = 5;
        context.image = context.previousImage = source.Get();
        context.nextImage = target.Get();
        context.carryWord = 1;
        context.frames = &*list;
        if (TransitionTable[static_cast<std::size_t>(row)].effect(context, {}, Runner()) == 0) {
            state.SkipWithError("the effect failed");
            break;
        }
        frames += list->count;
    }
    state.counters["frames"] = frames / static_cast<double>(state.iterations());
    state.counters["ns/pixel"] = benchmark::Counter(kPixels * frames * 1e-9, benchmark::Counter::kIsRate |
                                                                                 benchmark::Counter::kInvert);
}

const bool kRegistered = [] {
    for (int row = 0; row < kTransitionCount; ++row) {
        benchmark::RegisterBenchmark(TransitionTable[static_cast<std::size_t>(row)].name,
                                     [row](benchmark::State& state) { Effect(state, row); });
    }
    return true;
}();

} // namespace
} // namespace lumafold::bench
