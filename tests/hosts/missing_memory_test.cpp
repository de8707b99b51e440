// What the hosts do where the C++ library's own memory ends: operator new fails when a case asks for it.
#include <atomic>
#include <cstdlib>
#include <new>
#include <sstream>

#include <gtest/gtest.h>

#include "codecs/frame_screens.h"
#include "hosts/cli/recording_host.h"
#include "hosts/common/thread_pool.h"
#include "tests/support/animations.h"

namespace {

std::atomic<int> untilFailure = -1; ///< allocations; below 0 none fails

void* Allocate(std::size_t size) {
    if (untilFailure.load() >= 0 && untilFailure.fetch_sub(1) == 0) return nullptr;
    return std::malloc(size);
}

} // namespace

void* operator new(std::size_t size) {
    if (void* block = Allocate(size)) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace lumafold::test {
namespace {

/// Does `work` with the allocation of this number failing. Whether one failed.
template <typename Work>
bool FailsAt(int allocation, const Work& work) {
    untilFailure = allocation;
    try {
        work();
    } catch (const std::bad_alloc&) {
    }
    return untilFailure.exchange(-1) < 0;
}

TEST(MissingMemory, LeavesAPoolFewerThreadsAndTheyNeedNone) {
    for (int n = 0; n < 20; ++n) {
        std::atomic<int> calls = 0;
        bool made = false;
        FailsAt(n, [&] {
            const ThreadPool pool(3);
            made = true;
            untilFailure = 0;
            pool.ForEach(4, [&](std::size_t) { pool.ForEach(3, [&](std::size_t) { ++calls; }); });
        });
        EXPECT_EQ(calls, made ? 12 : 0) << n;
    }
}

TEST(FrameScreens, ShowsFramesInAnyOrderAndAfterMissingMemory) {
    Animation animation = EmptyAnimation(7, 5, 8);
    for (unsigned i = 0; i < 70; ++i)
        AddFrame(animation, {8, 5, i % 24 == 20 ? -1 : 255},
                 [&](int x, int y) { return static_cast<unsigned>(x + 7 * y) % 35 == i % 35 ? i : 255U; });
    const auto wanted = WantedScreens(animation);
    bool failed = true;
    for (int n = 0; failed; ++n) {
        FrameScreens screens(animation);
        failed = FailsAt(n, [&] {
            for (const std::size_t index : {20U, 5U, 33U})
                screens.At(index);
        });
        for (const std::size_t index : {19U, 69U, 0U, 33U, 32U, 68U, 16U, 15U, 17U, 69U, 69U, 1U})
            ASSERT_EQ(screens.At(index), wanted[index]) << index << " after allocation " << n;
    }
}

TEST(MissingMemory, IsToldWhereACommandWasLost) {
    struct NoFrames final : FrameSink {
        void Begin(const AnimationFacts&, std::size_t) override {}
        void Add(const FrameView&) override {}
    } frames;
    std::ostringstream screen;
    Progress progress(screen, ProgressStyle::Silent);
    RecordingHost recording(3, progress, screen, frames);
    const Host host(recording.Context());
    EXPECT_TRUE(FailsAt(0, [&] { host.Caption("Building"); }));
    EXPECT_EQ(recording.Fault(), kNoMemoryForFile);
    TaskRecord task{};
    task.width = task.height = 2;
    EXPECT_FALSE(host.CreateTask(TaskKind::Build, task));
    EXPECT_EQ(recording.Fault(), kNoMemoryForFile);
}

} // namespace
} // namespace lumafold::test
