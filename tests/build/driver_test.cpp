#include "build/build_driver.h"

#include <gtest/gtest.h>

#include <thread>

#include "build/estimate.h"
#include "hosts/common/thread_pool.h"
#include "tests/support/build_fixture.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14, kSilentMovie = 21, kDiamond = 22, kEllipse = 23;

using Failures = std::vector<BuildFailure>;

PluginSettings PlainSettings() {
    PluginSettings settings;
    settings.TransitionCustompalette = 0;
    settings.Supercompress = 0;
    settings.TransitionDither = 0;
    settings.TransitionIrisStep = 20;
    return settings;
}

class BuildDriver : public testing::Test {
protected:
    bool Build() { return host.Build(list, settings) != 0; }

    void ExpectListAsItWas(std::int32_t count) {
        ASSERT_EQ(list.Count(), count);
        for (std::int32_t i = 0; i < count; ++i) {
            ImageEntry entry;
            ASSERT_TRUE(list.Read(i, entry));
            // Packed fields are copied first: a reference to one may not be aligned.
            EXPECT_NE(+entry.image, 0U);
            EXPECT_EQ(+entry.workImage, 0U);
            EXPECT_TRUE(entry.frames == nullptr);
        }
    }

    PluginSettings settings = PlainSettings();
    RecordingHost host;
    TestList list;
};

TEST_F(BuildDriver, FailuresTellOnceAndLeaveTheListAlone) {
    const auto expectFailure = [&](BuildFailure failure, const RecordedCommand& last, std::int32_t count) {
        host.Forget();
        EXPECT_FALSE(Build());
        EXPECT_EQ(host.failures, Failures{failure});
        EXPECT_EQ(host.commands.empty() ? RecordedCommand{} : host.commands.back(), last);
        EXPECT_EQ(host.waiting, 0);
        ExpectListAsItWas(count);
    };
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    expectFailure(BuildFailure::Memory, {}, 0); // nothing listed
    list.Add(BusyPicture(7, 5, 1), kNone, 50, 3);
    list.refuseTemporary = true;
    expectFailure(BuildFailure::Memory, {}, 1);
    list.Add(BusyPicture(7, 5, 1), 33, 50, 3); // no such row
    expectFailure(BuildFailure::Memory, {13, 2, "2"}, 2);
    ImageEntry entry;
    list.Read(1, entry);
    entry.transition = kNone;
    list.Write(1, entry);
    host.refuseTask = true;
    expectFailure(BuildFailure::Task, {1, 0, ""}, 2);
    host.refuseTask = false;
    host.refuseFrame = 1;
    expectFailure(BuildFailure::Frame, {4, 0, ""}, 2);
    host.frames.clear();
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks + 4); // two lines, two pictures
}

/// Takes the frames away as soon as the task is made, and leaves their number.
class RobbingHost : public RecordingHost {
public:
    explicit RobbingHost(ImageList& list) : list_(list) {}

private:
    bool CreateTask(const TaskRecord*, TaskKind) override {
        ImageEntry entry;
        list_.Read(0, entry);
        const std::int32_t count = entry.frames->count;
        FrameListRelease(*entry.frames);
        entry.frames->count = count;
        return true;
    }
    ImageList& list_;
};

TEST_F(BuildDriver, FrameThatCannotBeReadAbandonsTheTask) {
    list.Add(BusyPicture(7, 5, 1), kNone, 50, 3);
    RobbingHost robber(list);
    EXPECT_EQ(robber.Build(list, settings), 0);
    EXPECT_EQ(robber.failures, Failures{BuildFailure::Memory});
    EXPECT_EQ(robber.commands.back(), (RecordedCommand{4, 0, ""}));
    ExpectListAsItWas(1);
}

TEST_F(BuildDriver, GivesUpBeforeRenderingWhatCannotFit) {
    settings.Supercompress = 1;
    list.Add(BusyPicture(61, 5, 1), kEllipse, 5, 5);
    list.Add(BusyPicture(6, 47, 2), kNone, 5, 5);
    BuildEstimate estimate;
    ASSERT_TRUE(EstimateBuild(list, TaskKind::Build, settings, 1, estimate));
    EXPECT_EQ(std::tuple(estimate.width, estimate.height, estimate.frames), std::tuple(61, 47, 6 + 1));
    const std::uint64_t picture = 40 + 184 * 47, mask = 40 + 8 + 8 * 47;
    const std::uint64_t frames = 7 * (picture + 40) + 2 * picture, reduced = 40 + 1024 + 64 * 47;
    EXPECT_EQ(estimate.bytes, frames + 3 * 61 * 47) << "the iris takes more than the masks";
    EXPECT_EQ(estimate.handedOver, 7 * (reduced + 40 + mask) + 2 * picture);
    EXPECT_EQ(host.Build(list, settings, TaskKind::Build, Runner(), estimate.bytes), 1);
    host.Forget();
    EXPECT_EQ(host.Build(list, settings, TaskKind::Build, Runner(), estimate.bytes - 1), 0);
    EXPECT_EQ(host.failures, Failures{BuildFailure::Memory});
    EXPECT_EQ(host.commands.back(), (RecordedCommand{13, 1, "2"})); // of the first gap
    ExpectListAsItWas(2);

    // A test build has no masks; one picture alone has its background beside it.
    ASSERT_TRUE(EstimateBuild(list, TaskKind::Test, settings, 1, estimate));
    EXPECT_EQ(estimate.bytes, frames + 3 * 61 * 47);
    TestList one(kDiamond);
    one.Add(BusyPicture(6, 47, 2), kNone, 5, 5);
    ASSERT_TRUE(EstimateBuild(one, TaskKind::Test, settings, 1, estimate));
    EXPECT_EQ(estimate.frames, 1 + 5);

    // Sums beyond 64 bits are the largest number: tiles of one pixel, each with thousands of frames.
    settings.TransitionAlphaTileSize = settings.TransitionAlphaTileCount = 1;
    settings.TransitionAlphaTileStep = 5'000'000;
    TestList large;
    for (int i = 0; i < 2; ++i)
        large.Add(DibCreate(20000, 20000, nullptr, 1), 4, 5, 5);
    ASSERT_TRUE(EstimateBuild(large, TaskKind::Test, settings, 1, estimate));
    EXPECT_EQ(estimate.bytes, UINT64_MAX);
    EXPECT_EQ(host.Build(large, settings, TaskKind::Test, Runner(), UINT64_MAX - 1), 0);
}

/// Every allocation of a build fails in turn, for each way a build can go, on this thread and on three.
TEST_F(BuildDriver, EveryFailingAllocationEndsCleanly) {
    struct Case {
        int pictures, transition;
        std::uint32_t trueColour, dither, optimal;
        // Kernels that cannot be had give black masks, a tree a black palette; the build goes on.
        int tolerated;
    };
    host.keepFrames = false;
    settings.TransitionSilentMovieStep = 20;
    for (const Case& c : {Case{1, kNone, 0, 1, 0, 0},
                          {1, kDiamond, 0, 1, 1, 4 + 1},
                          {2, kNone, 0, 0, 0, 0},
                          {2, kDiamond, 0, 1, 1, 8 + 1},
                          {2, kNone, 1, 0, 1, 0},
                          {3, kSilentMovie, 1, 0, 0, 27}}) {
        SCOPED_TRACE(testing::Message() << c.pictures << " pictures, row " << c.transition);
        settings.TransitionTruecolour = c.trueColour;
        settings.TransitionDither = c.dither;
        settings.TransitionCustompalette = settings.Supercompress = c.optimal;
        TestList own;
        for (int i = 0; i < c.pictures; ++i)
            own.Add(NoisePicture(7 + i, 5, i == 1 ? 8 : 24, 3), c.transition, 5, 5);
        for (const int workers : {1, 3}) {
            const ThreadPool runner(workers);
            int tolerated = 0;
            const auto build = [&] {
                host.Forget();
                return host.Build(own, settings, TaskKind::Build, runner);
            };
            const auto check = [&](int built, bool missed) {
                EXPECT_EQ(own.Count(), c.pictures);
                EXPECT_EQ(host.waiting, 0);
                EXPECT_EQ(host.failures, built == 1 ? Failures{} : Failures{BuildFailure::Memory});
                EXPECT_TRUE(built == 1 || missed);
                if (missed && built == 1) ++tolerated;
            };
            EXPECT_GT(FailEachAllocation(build, check), 8);
            if (workers == 1 || c.tolerated == 0) {
                EXPECT_EQ(tolerated, c.tolerated);
            }
        }
    }
}

struct WholeBuild {
    int transition;
    TaskKind kind;
    std::uint32_t palette, dither, trueColour, optimal;
    std::uint64_t checksum;
};
constexpr auto kBuild = TaskKind::Build, kTest = TaskKind::Test;
const WholeBuild kWholeBuilds[] = {
    {kEllipse, kBuild, 6, 1, 0, 0, 0x8FC88BF576D3ED0D},
    {kEllipse, kBuild, 6, 0, 0, 0, 0xA5AAC6B31C6AF361},
    {kDiamond, kBuild, 0, 1, 0, 0, 0xDAE655F9A79CA2E8},
    {kDiamond, kTest, 0, 0, 0, 0, 0x6B29167DD1B1D6BF},
    {kSilentMovie, kBuild, 1, 1, 0, 0, 0x45B35CAB319C5DC1},
    {kSilentMovie, kBuild, 2, 0, 0, 0, 0xDEAB8E10778B26DD},
    {kNone, kBuild, 5, 1, 0, 0, 0x994A711E6E9E4CFC},
    {kEllipse, kBuild, 8, 0, 0, 0, 0x3DE97352ABA8C43A},
    {kDiamond, kBuild, 0, 0, 1, 0, 0xDC7655E6FA5547B6},
    {kEllipse, kBuild, 0, 1, 0, 1, 0xD0EA965D51A2EC5D},
    {kDiamond, kBuild, 0, 0, 0, 1, 0x4F56F66C565CA0E3},
    {kDiamond, kBuild, 0, 0, 1, 1, 0xC4606D538AEADBFD},
    {kDiamond, kTest, 0, 0, 0, 1, 0x57137AC480D3C9B4},
    {kDiamond, kTest, 0, 0, 1, 1, 0x4F222A8CA123BB02},
};

/// What the host is given of a whole build.
std::uint64_t SumOf(const WholeBuild& build, const Runner& runner = Runner()) {
    PluginSettings settings = PlainSettings();
    settings.TransitionPalette = build.palette;
    settings.TransitionDither = build.dither;
    settings.TransitionTruecolour = build.trueColour;
    settings.TransitionCustompalette = settings.Supercompress = build.optimal;
    RecordingHost host;
    TestList list;
    list.Add(BusyPicture(61, 47, 1), build.transition, 5, 5);
    list.Add(NoisePicture(32, 20, 8, 2), build.transition, 5, 5);
    return host.Build(list, settings, build.kind, runner) == 1 ? host.Sum() : 0;
}

/// Equal on every platform, too.
TEST(WholeBuilds, AreTheSameWithAnyNumberOfWorkers) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    for (const WholeBuild& build : kWholeBuilds)
        EXPECT_EQ(SumOf(build), build.checksum) << "case " << &build - kWholeBuilds;
    for (const int workers : {1, 2, 3, 8}) {
        const ThreadPool runner(workers);
        for (const WholeBuild& build : kWholeBuilds)
            EXPECT_EQ(SumOf(build, runner), build.checksum)
                << "case " << &build - kWholeBuilds << ", " << workers << " workers";
    }
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
    EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
}

#ifndef __EMSCRIPTEN__ // one thread
TEST(WholeBuilds, MayRunAtTheSameTime) {
    const auto each = [](bool backwards) {
        return [=] {
            for (std::size_t i = 0; i < std::size(kWholeBuilds); ++i) {
                const WholeBuild& build = kWholeBuilds[backwards ? std::size(kWholeBuilds) - 1 - i : i];
                EXPECT_EQ(SumOf(build), build.checksum) << "case " << &build - kWholeBuilds;
            }
        };
    };
    const std::jthread forwards(each(false)), backwards(each(true));
}
#endif

} // namespace
} // namespace lumafold::test
