// What all hosts share: how long frames stand, the threads they lend, how many there may be.
#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "hosts/common/play_times.h"
#include "hosts/common/processors.h"
#include "hosts/common/thread_pool.h"

namespace lumafold::test {
namespace {

TEST(PlayTimes, ShortFramesTakeTheirTimeFromThoseBehind) {
    using Delays = std::vector<std::int32_t>;
    const std::pair<Delays, Delays> kCases[] = {
        {{100, 5, 2}, {100, 5, 2}}, {{100, 0, 1, 50, 9}, {100, 2, 2, 47, 9}}, {{0, 3, 3, 9}, {2, 2, 2, 9}},
        {{9, 0, 1}, {6, 2, 2}}, // nothing stands behind them, so from the beginning again
        {{0, 1, 2}, {2, 2, 2}}, // there is no time to take
    };
    for (const auto& [before, after] : kCases) {
        Animation animation;
        for (const std::int32_t delay : before)
            animation.frames.push_back({OwnedDib(), delay, -1});
        EXPECT_EQ(LengthenShortFrames(animation),
                  static_cast<std::size_t>(
                      std::count_if(before.begin(), before.end(), [](int delay) { return delay < 2; })));
        Delays got;
        for (const AnimationFrame& frame : animation.frames)
            got.push_back(frame.delay);
        EXPECT_EQ(got, after);
    }
}

TEST(ThreadPool, RunsEveryPieceOnceNestedOnesToo) {
    for (const int jobs : {1, 2, 5}) {
        ThreadPool pool(jobs);
        for (int round = 0; round < 50; ++round) {
            std::vector<std::atomic<int>> calls(40);
            pool.Run(8, [&](std::size_t outer) {
                pool.Run(5, [&](std::size_t inner) { ++calls[outer * 5 + inner]; });
            });
            for (const auto& count : calls)
                ASSERT_EQ(count, 1) << jobs;
        }
    }
}

TEST(ThreadPool, WorksAtOnceAndHandsFailuresToTheCaller) {
    ThreadPool pool(2);
    std::atomic<int> waiting = 0;
    pool.Run(2, [&](std::size_t) {
        ++waiting;
        while (waiting < 2)
            std::this_thread::yield();
    });
    constexpr int kMany = 1'000'000'000; // would take minutes
    for (const std::size_t failing : {0U, 7U}) {
        std::atomic<int> calls = 0;
        const auto run = [&] {
            pool.Run(kMany, [&](std::size_t i) {
                ++calls;
                if (i == failing) throw std::runtime_error("lost");
            });
        };
        EXPECT_THROW(run(), std::runtime_error);
        EXPECT_LT(calls, kMany) << "no further ones are begun";
    }
}

TEST(Processors, AreNoMoreThanTheShareKeepsBusy) {
    const std::pair<const char*, std::optional<int>> kCases[] = {
        {"200000 100000", 2}, {"150000 100000", 2}, {"1000 100000", 1}, {"max 100000", std::nullopt},
        {"-1 100000", {}},    {"", std::nullopt},   {"100000", {}},     {"100000 0", std::nullopt},
    };
    for (const auto& [share, processors] : kCases)
        EXPECT_EQ(ProcessorsOfShare(share), processors) << share;
    EXPECT_GE(UsableProcessors(), 1);
}

} // namespace
} // namespace lumafold::test
