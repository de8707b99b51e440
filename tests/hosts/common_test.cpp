// What all hosts share: the threads they lend, how many there may be.
#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "hosts/common/processors.h"
#include "hosts/common/thread_pool.h"

namespace lumafold::test {
namespace {

TEST(ThreadPool, RunsEveryPieceOnceNestedOnesToo) {
    for (const int jobs : {1, 2, 5}) {
        const ThreadPool pool(jobs);
        for (int round = 0; round < 50; ++round) {
            std::vector<std::atomic<int>> calls(40);
            pool.ForEach(8, [&](std::size_t outer) {
                pool.ForEach(5, [&](std::size_t inner) { ++calls[outer * 5 + inner]; });
            });
            for (const auto& count : calls)
                ASSERT_EQ(count, 1) << jobs;
        }
    }
}

TEST(ThreadPool, WorksAtOnceAndHandsFailuresToTheCaller) {
    const ThreadPool pool(2);
    std::atomic<int> waiting = 0;
    pool.ForEach(2, [&](std::size_t) {
        ++waiting;
        while (waiting < 2)
            std::this_thread::yield();
    });
    constexpr int kMany = 1'000'000'000; // would take minutes
    for (const std::size_t failing : {0U, 7U}) {
        std::atomic<int> calls = 0;
        const auto run = [&] {
            pool.ForEach(kMany, [&](std::size_t i) {
                ++calls;
                if (i == failing) throw std::runtime_error("lost");
            });
        };
        EXPECT_THROW(run(), std::runtime_error);
        EXPECT_LT(calls, kMany) << "no further ones are begun";
    }
}

TEST(ThreadPool, DoesErrandsBesideTheirGiver) {
    for (const int jobs : {1, 2, 5}) {
        const ThreadPool pool(jobs);
        std::atomic<int> calls = 0;
        bool settled = true; // by what follows, too
        const auto work = [&] { pool.ForEach(3, [&](std::size_t) { ++calls; }); };
        for (int i = 0; i < 200; ++i) {
            pool.Begin(work);
            if (i % 50 != 49) continue;
            pool.Settle();
            settled &= calls == 3 * (i + 1);
        }
        EXPECT_TRUE(settled) << jobs;
        const auto lose = [] { throw std::runtime_error("lost"); };
        const auto fail = [&] {
            for (int i = 0; i < 30; ++i)
                pool.Begin(lose);
            pool.Settle();
        };
        EXPECT_THROW(fail(), std::runtime_error) << jobs;
    }
    const ThreadPool pool(2);
    std::atomic<bool> goneOn = false;
    const auto wait = [&] {
        while (!goneOn)
            std::this_thread::yield();
    };
    pool.Begin(wait);
    goneOn = true;
    pool.Settle();
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
