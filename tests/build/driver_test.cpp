#include "build/build_driver.h"

#include <gtest/gtest.h>

#include "build/estimate.h"
#include "settings/settings.h"
#include "tests/support/build_fixture.h"
#include "tests/support/checksum.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14, kSilentMovie = 21, kDiamond = 22, kEllipse = 23;

class BuildDriver : public testing::Test {
protected:
    BuildDriver() {
        pluginSettings.TransitionCustompalette = 0;
        pluginSettings.Supercompress = 0;
        pluginSettings.TransitionDither = 0;
        pluginSettings.TransitionIrisStep = 20;
    }
    int Build(TaskKind kind = TaskKind::Build) { return BuildAnimation(list, 0, host.context, kind); }

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

    SettingsGuard settings;
    RecordingHost host;
    TestList list;
};

TEST_F(BuildDriver, SendsTheCommentWhenAskedAndLeavesTheListAlone) {
    list.Add(BusyPicture(7, 5, 1), kNone, 50, 3);
    list.Add(BusyPicture(6, 8, 2), kNone, 60, 3);
    ASSERT_EQ(Build(), 1);
    const std::vector<RecordedCommand> commands = host.commands;
    ASSERT_EQ(commands.size(), 21U);
    EXPECT_EQ(commands[19], (RecordedCommand{3, 0, kDescriptiveComment}));
    EXPECT_TRUE(host.messages.empty());
    EXPECT_EQ(host.waitCursors, 0);
    ExpectListAsItWas(2);
    pluginSettings.AddDescriptiveCommentBlock = 0;
    ASSERT_EQ(Build(), 1);
    EXPECT_EQ(host.commands.size(), 2 * commands.size() - 1);
}

TEST_F(BuildDriver, FailuresTellOnceAndLeaveTheListAlone) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    EXPECT_EQ(Build(), 0); // nothing listed
    EXPECT_EQ(host.messages, std::vector<std::string>{"Memory error"});
    EXPECT_TRUE(host.commands.empty());

    list.Add(BusyPicture(7, 5, 1), kNone, 50, 3);
    list.refuseTemporary = true;
    EXPECT_EQ(Build(), 0);
    EXPECT_EQ(host.messages.size(), 2U);
    ExpectListAsItWas(1);

    list.Add(BusyPicture(7, 5, 1), 33, 50, 3); // no such row
    EXPECT_EQ(Build(), 0);
    EXPECT_EQ(host.messages.back(), "Memory error");
    ExpectListAsItWas(2);
    {
        ImageEntry entry;
        list.Read(1, entry);
        entry.transition = kNone;
        list.Write(1, entry);
    }
    host.messages.clear();
    host.refuseTask = true;
    EXPECT_EQ(Build(), 0);
    EXPECT_EQ(host.messages, std::vector<std::string>{"Error creating new task."});
    EXPECT_EQ(host.commands.back().command, 1U);
    ExpectListAsItWas(2);

    host.refuseTask = false;
    host.refuseFrame = 1;
    EXPECT_EQ(Build(), 0);
    EXPECT_EQ(host.messages.back(), "There has been an error adding an image to the current file object.");
    EXPECT_EQ(host.commands.back(), (RecordedCommand{4, 0, ""}));
    EXPECT_EQ(host.waitCursors, 0);
    ExpectListAsItWas(2);
    host.frames.clear();
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks + 4); // two lines, two pictures
}

TEST_F(BuildDriver, GivesUpBeforeRenderingWhatCannotFit) {
    pluginSettings.Supercompress = 1;
    list.Add(BusyPicture(61, 5, 1), kEllipse, 5, 5);
    list.Add(BusyPicture(6, 47, 2), kNone, 5, 5);
    BuildEstimate estimate;
    ASSERT_TRUE(EstimateBuild(list, TaskKind::Build, estimate));
    EXPECT_EQ(std::tuple(estimate.width, estimate.height, estimate.frames), std::tuple(61, 47, 6 + 1));
    const std::uint64_t picture = 40 + 184 * 47, mask = 40 + 8 + 8 * 47;
    EXPECT_EQ(estimate.bytes, 7 * (picture + 40 + mask) + 2 * picture);
    EXPECT_EQ(BuildAnimation(list, 0, host.context, TaskKind::Build, estimate.bytes), 1);
    host.commands.clear();
    EXPECT_EQ(BuildAnimation(list, 0, host.context, TaskKind::Build, estimate.bytes - 1), 0);
    EXPECT_EQ(host.messages, std::vector<std::string>{"Memory error"});
    EXPECT_EQ(host.commands.back(), (RecordedCommand{13, 2, "2"})); // measured, nothing more
    ExpectListAsItWas(2);

    // A test build has no masks; one picture alone has its background beside it.
    ASSERT_TRUE(EstimateBuild(list, TaskKind::Test, estimate));
    EXPECT_EQ(estimate.bytes, 7 * (picture + 40) + 2 * picture);
    TestList one;
    one.Add(BusyPicture(6, 47, 2), kNone, 5, 5);
    one.defaultTransition = kDiamond;
    ASSERT_TRUE(EstimateBuild(one, TaskKind::Test, estimate));
    EXPECT_EQ(estimate.frames, 1 + 5);

    // Sums beyond 64 bits are the largest number: tiles of one pixel, each with thousands of frames.
    pluginSettings.TransitionAlphaTileSize = pluginSettings.TransitionAlphaTileCount = 1;
    pluginSettings.TransitionAlphaTileStep = 5'000'000;
    TestList large;
    for (int i = 0; i < 2; ++i)
        large.Add(OwnedDib(DibCreate(20000, 20000, nullptr, 1)), 4, 5, 5);
    ASSERT_TRUE(EstimateBuild(large, TaskKind::Test, estimate));
    EXPECT_EQ(estimate.bytes, UINT64_MAX);
    EXPECT_EQ(BuildAnimation(large, 0, host.context, TaskKind::Test, UINT64_MAX - 1), 0);
}

/// Every allocation of a build fails in turn, for each way a build can go.
TEST_F(BuildDriver, EveryFailingAllocationEndsCleanly) {
    struct Case {
        int pictures, transition;
        std::uint32_t trueColour, dither, optimal;
        int tolerated; // kernels that cannot be had give black masks, a tree a black palette; the build goes
                       // on
    };
    for (const Case& c : {Case{1, kNone, 0, 1, 0, 0},
                          {1, kDiamond, 0, 1, 1, 4 + 1},
                          {2, kNone, 0, 0, 0, 0},
                          {2, kDiamond, 0, 1, 1, 8 + 1},
                          {2, kNone, 1, 0, 1, 0},
                          {3, kDiamond, 0, 1, 1, 12 + 1},
                          {3, kSilentMovie, 1, 0, 0, 27}}) {
        SCOPED_TRACE(testing::Message() << c.pictures << " pictures, row " << c.transition);
        pluginSettings.TransitionTruecolour = c.trueColour;
        pluginSettings.TransitionDither = c.dither;
        pluginSettings.TransitionCustompalette = pluginSettings.Supercompress = c.optimal;
        pluginSettings.TransitionSilentMovieStep = 20;
        host.keepFrames = false;
        TestList own;
        for (int i = 0; i < c.pictures; ++i) {
            own.Add(NoisePicture(7 + i, 5, i == 1 ? 8 : 24, 3), c.transition, 5, 5);
        }
        int tolerated = 0;
        const auto build = [&] {
            host.messages.clear();
            return BuildAnimation(own, 0, host.context, TaskKind::Build);
        };
        const auto check = [&](int built, bool missed) {
            EXPECT_EQ(own.Count(), c.pictures);
            EXPECT_EQ(host.waitCursors, 0);
            if (missed && built == 1) ++tolerated;
            const bool told = host.messages == std::vector<std::string>{"Memory error"};
            EXPECT_TRUE(built == 1 ? host.messages.empty() : missed && told);
        };
        EXPECT_GT(FailEachAllocation(build, check), 8);
        EXPECT_EQ(tolerated, c.tolerated);
    }
}

/// All that the host is given: commands, the task with its palette, and the frames with their tables.
std::uint64_t ChecksumOf(const RecordingHost& host) {
    Checksum sum;
    for (const RecordedCommand& command : host.commands) {
        sum.Add(&command.command, 2 * sizeof(std::uint32_t));
        sum.Add(command.text.data(), command.text.size());
    }
    sum.Add(&host.task, sizeof(host.task));
    for (const RecordedFrame& frame : host.frames) {
        const LockedDib image(frame.image.Get());
        Palette own;
        DibGetPalette(*image, own);
        const std::int32_t numbers[] = {frame.delay, frame.index, frame.transparentIndex};
        sum.Add(*image);
        sum.Add(own.data(), sizeof(own));
        sum.Add(numbers, sizeof(numbers));
    }
    return sum.Value();
}

/// What whole builds come to, equal on every platform.
TEST_F(BuildDriver, ChecksumsOfWholeBuilds) {
    constexpr auto kBuild = TaskKind::Build, kTest = TaskKind::Test;
    struct Case {
        int transition;
        TaskKind kind;
        std::uint32_t palette, dither, trueColour, optimal;
        std::uint64_t checksum;
    };
    const Case cases[] = {
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
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        pluginSettings.TransitionPalette = c.palette;
        pluginSettings.TransitionDither = c.dither;
        pluginSettings.TransitionTruecolour = c.trueColour;
        pluginSettings.TransitionCustompalette = pluginSettings.Supercompress = c.optimal;
        TestList own;
        own.Add(BusyPicture(61, 47, 1), c.transition, 5, 5);
        own.Add(NoisePicture(32, 20, 8, 2), c.transition, 5, 5);
        host.frames.clear();
        host.commands.clear();
        ASSERT_EQ(BuildAnimation(own, 0, host.context, c.kind), 1);
        EXPECT_EQ(ChecksumOf(host), c.checksum) << std::hex << ChecksumOf(host);
    }
}

} // namespace
} // namespace lumafold::test
