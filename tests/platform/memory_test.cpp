#include "platform/allocation.h"
#include "platform/global_memory.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
/// A request nothing can meet must fail here as it does without the sanitizer, not end the program.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace lumafold {
namespace {

/// Every test must end with what it began with.
class Memory : public ::testing::Test {
protected:
    void TearDown() override {
        allocation_hooks::FailNth(0);
        EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks_);
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks_);
    }

private:
    std::int64_t blocks_ = allocation_hooks::LiveBlocks();
    std::int64_t locks_ = allocation_hooks::LiveLocks();
};

bool IsFilled(GlobalHandle handle, std::size_t from, std::size_t to, std::uint8_t value) {
    const GlobalLocked<std::uint8_t> bytes(handle);
    return bytes &&
           std::all_of(bytes.Get() + from, bytes.Get() + to, [=](std::uint8_t b) { return b == value; });
}

bool Fill(GlobalHandle handle, std::size_t length, std::uint8_t value) {
    const GlobalLocked<std::uint8_t> bytes(handle);
    if (bytes) std::memset(bytes.Get(), value, length);
    return static_cast<bool>(bytes);
}

TEST_F(Memory, BlocksAreZeroedAndGrowByZeroes) {
    for (const std::size_t length : {0U, 1U, 40U, 100003U}) {
        const OwnedGlobal block(GlobalCreate(GlobalKind::MovableShared, length));
        ASSERT_TRUE(block);
        EXPECT_GE(GlobalBytes(block.Get()), length);
        EXPECT_TRUE(IsFilled(block.Get(), 0, length, 0));
        ASSERT_TRUE(Fill(block.Get(), length, 0x77));
        ASSERT_EQ(GlobalResize(block.Get(), length), block.Get());
        ASSERT_EQ(GlobalResize(block.Get(), length + 5000), block.Get()) << "a movable block keeps its name";
        EXPECT_GE(GlobalBytes(block.Get()), length + 5000);
        EXPECT_TRUE(IsFilled(block.Get(), 0, length, 0x77));
        // The system may have rounded the block up, and then calls those bytes old ones.
        EXPECT_TRUE(IsFilled(block.Get(), length + 16, length + 5000, 0));
    }
}

TEST_F(Memory, LockedBlocksStayWhereTheyAre) {
    const OwnedGlobal block(GlobalCreate(GlobalKind::Movable, 64));
    const std::int64_t locks = allocation_hooks::LiveLocks();
    {
        const GlobalLocked<std::uint8_t> outer(block.Get());
        ASSERT_TRUE(outer);
        outer.Get()[63] = 9;
        {
            const GlobalLocked<std::uint8_t> inner(block.Get());
            EXPECT_EQ(inner.Get(), outer.Get());
            EXPECT_EQ(allocation_hooks::LiveLocks(), locks + 2);
        }
        EXPECT_EQ(GlobalResize(block.Get(), 1 << 20), 0U) << "one lock is left";
        EXPECT_EQ(outer.Get()[63], 9);
    }
    EXPECT_EQ(GlobalResize(block.Get(), 1 << 20), block.Get());
    EXPECT_TRUE(IsFilled(block.Get(), 63, 64, 9));
}

TEST_F(Memory, WhatIsNoBlockIsToldSo) {
    EXPECT_EQ(GlobalBytes(0), 0U);
    EXPECT_EQ(GlobalAcquire(0), nullptr);
    EXPECT_EQ(GlobalDuplicate(0), 0U);
    EXPECT_EQ(GlobalResize(0, 10), 0U);
    GlobalDestroy(0);
    EXPECT_EQ(GlobalCreate(GlobalKind::Movable, std::numeric_limits<std::size_t>::max() / 2), 0U);
#ifndef _WIN32
    const GlobalHandle freed = GlobalCreate(GlobalKind::Movable, 10);
    GlobalDestroy(freed);
    for (const GlobalHandle stray : {freed, freed + 1, GlobalHandle{1}, ~GlobalHandle{3}}) {
        EXPECT_EQ(GlobalAcquire(stray), nullptr);
        EXPECT_EQ(GlobalBytes(stray), 0U);
        EXPECT_EQ(GlobalResize(stray, 10), 0U);
        GlobalRelease(stray);
        GlobalDestroy(stray);
    }
#endif
}

TEST_F(Memory, TheNthAllocationOfAnyKindFailsOnce) {
    const std::int64_t before = allocation_hooks::LiveBlocks();
    for (int n = 1; n <= 4; ++n) {
        allocation_hooks::FailNth(n);
        const Array<int> first(10);
        const OwnedGlobal second(GlobalCreate(GlobalKind::Movable, 10));
        const bool grown = GlobalResize(second.Get(), 20) != 0;
        EXPECT_EQ(static_cast<bool>(first), n != 1);
        EXPECT_EQ(static_cast<bool>(second), n != 2);
        EXPECT_EQ(grown, n == 1 || n == 4) << "what is missing cannot grow either";
        EXPECT_EQ(allocation_hooks::HasFailed(), n <= 3);
        EXPECT_EQ(allocation_hooks::Requests(), 3);
        EXPECT_EQ(allocation_hooks::LiveBlocks(), before + (n > 2 ? 2 : 1));
    }
}

TEST_F(Memory, ArraysAreZeroedAndMove) {
    Array<std::uint32_t> array(1000);
    ASSERT_EQ(array.size(), 1000U);
    EXPECT_EQ(std::count(array.begin(), array.end(), 0U), 1000);
    array[999] = 5;
    Array<std::uint32_t> moved(std::move(array));
    EXPECT_EQ(moved[999], 5U);
    array = Array<std::uint32_t>(3);
    EXPECT_EQ(array.size(), 3U);
    EXPECT_TRUE(Array<std::uint32_t>(0)) << "no elements is no failure";
    EXPECT_FALSE(Array<double>(std::numeric_limits<std::size_t>::max() / 4));
    EXPECT_FALSE(Array<std::uint8_t>(std::numeric_limits<std::size_t>::max() - 64));
}

} // namespace
} // namespace lumafold
