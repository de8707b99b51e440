// A runner that has threads, for tests of what runs at once.
#pragma once

#include <atomic>
#include <thread>
#include <vector>

#include "platform/runner.h"

namespace lumafold::test {

/// Starts its threads anew for each round of work; the caller's own is one of them.
class ThreadRunner final : public Runner {
public:
    explicit ThreadRunner(std::size_t workers) : workers_(workers) {}
    std::size_t Workers() const override { return workers_; }

private:
    void Run(std::size_t count, Piece piece, const void* work) const override {
        std::atomic<std::size_t> next = 0;
        const auto take = [&] {
            for (std::size_t i; (i = next++) < count;)
                piece(work, i);
        };
        std::vector<std::jthread> threads;
        for (std::size_t i = 1; i < workers_ && i < count; ++i)
            threads.emplace_back(take);
        take();
    }

    std::size_t workers_;
};

} // namespace lumafold::test
