// Walks a piece of work through every allocation it makes, each failing once.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "platform/allocation.h"

namespace lumafold::test {

/// Runs `attempt` with its first allocation failing, then with its second, and so on until a run gets
/// through; shows `check` what each run came to and whether memory was missing. Every run must leave as many
/// blocks and locks as there were. How many allocations there are, which is printed too.
template <typename Attempt, typename Check>
int FailEachAllocation(Attempt attempt, Check check) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    for (int n = 1;; ++n) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, "allocation " + std::to_string(n));
        bool missed = false;
        {
            allocation_hooks::FailNth(n);
            auto result = attempt();
            missed = allocation_hooks::HasFailed();
            allocation_hooks::FailNth(0);
            check(result, missed);
        }
        EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
        if (missed) continue;
        std::printf("             %d allocations made to fail\n", n - 1);
        return n - 1;
    }
}

} // namespace lumafold::test
