#include "build/build_driver.h"

#include <gtest/gtest.h>

#include "build/estimate.h"
#include "settings/settings.h"
#include "tests/support/build_fixture.h"
#include "tests/support/checksum.h"
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

TEST_F(BuildDriver, AnnouncesWhatItHasMade) {
    list.Add(BusyPicture(7, 5, 1), kNone, 50, 3);
    list.Add(BusyPicture(6, 8, 2), kNone, 60, 3);
    ASSERT_EQ(Build(), 1);
    ASSERT_EQ(host.commands.size(), 21U);
    EXPECT_EQ(host.commands[16], (RecordedCommand{1, 0, ""}));
    EXPECT_EQ(host.commands[19], (RecordedCommand{3, 0, kDescriptiveComment}));
    EXPECT_EQ(host.commands[20], (RecordedCommand{4, 1, ""}));
    EXPECT_EQ(+host.task.size, 1069U);
    EXPECT_EQ(+host.task.version, 0x201U);
    EXPECT_EQ(std::tuple(+host.task.width, +host.task.height), std::tuple(7, 8));
    EXPECT_EQ(+host.task.paletteBits, 8);
    EXPECT_EQ(+host.task.frameCount, 2);
    EXPECT_EQ(host.task.palette[255], (Rgb{255, 255, 255}));
    EXPECT_EQ(host.frames[0].delay, 50);
    EXPECT_EQ(host.frames[1].delay, 60);
    EXPECT_EQ(host.frames[1].index, 1);
    EXPECT_EQ(host.frames[1].transparentIndex, -1);
    EXPECT_TRUE(host.messages.empty());
    EXPECT_EQ(host.waitCursors, 0);
    ExpectListAsItWas(2);

    // A test build differs in one command; without the comment setting none is sent.
    host.commands.clear();
    pluginSettings.AddDescriptiveCommentBlock = 0;
    ASSERT_EQ(Build(TaskKind::Test), 1);
    EXPECT_EQ(host.commands[16], (RecordedCommand{5, 0, ""}));
    EXPECT_EQ(host.commands.size(), 20U);
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

TEST_F(BuildDriver, MakesAPaletteAndMarksWhatStays) {
    pluginSettings.TransitionCustompalette = pluginSettings.Supercompress = 1;
    pluginSettings.TransitionMattcolour = 0x0000FF; // red
    const auto picture = [](PixelValue last) {
        OwnedDib dib = PlainPicture(4, 1, 0xFFFFFF);
        const LockedDib d(dib.Get());
        DibSetPixel(d.Get(), 0, 0, 0x00FF00);
        DibSetPixel(d.Get(), 3, 0, last);
        return dib;
    };
    list.Add(picture(0x000000), kNone, 5, 5);
    list.Add(picture(0xFF0000), kNone, 5, 5);
    list.Add(picture(0xFF0000), kNone, 5, 5);
    ASSERT_EQ(Build(), 1);
    std::vector<std::string> captions;
    for (const RecordedCommand& command : host.commands) {
        if (command.command == 10) captions.push_back(command.text);
    }
    EXPECT_EQ(captions, (std::vector<std::string>{"Calculating", "Adjusting", "Building", "Quantizing",
                                                  "Supercompressing", "Remapping"}));
    // Black, blue, green, white by luminance; then the slot, in the matte colour: five entries are three
    // bits.
    EXPECT_EQ(+host.task.paletteBits, 3);
    const Rgb palette[] = {{0, 0, 0}, {0, 0, 255}, {0, 255, 0}, {255, 255, 255}, {255, 0, 0}, {0, 0, 0}};
    EXPECT_TRUE(std::equal(palette, palette + 6, host.task.palette.begin()));
    const PixelValue shown[3][4] = {{2, 3, 3, 0}, {4, 4, 4, 1}, {4, 4, 4, 4}};
    for (std::size_t frame = 0; frame < 3; ++frame) {
        SCOPED_TRACE(frame);
        EXPECT_EQ(host.frames[frame].transparentIndex, frame == 0 ? -1 : 4);
        for (std::int32_t x = 0; x < 4; ++x) {
            EXPECT_EQ(PixelAt(host.frames[frame].image.Get(), x, 0), shown[frame][x]);
        }
        int bits = 0;
        Palette own;
        DibQuery(host.frames[frame].image.Get(), nullptr, nullptr, &bits, &own);
        EXPECT_EQ(bits, 4);
        EXPECT_EQ(own[4], (Rgb{255, 0, 0}));
    }

    // A test build marks nothing and may use all 256 colours; a fixed palette has no slot.
    host.frames.clear();
    ASSERT_EQ(Build(TaskKind::Test), 1);
    EXPECT_EQ(+host.task.paletteBits, 2);
    EXPECT_EQ(host.frames[1].transparentIndex, -1);
    host.frames.clear();
    pluginSettings.TransitionCustompalette = 0;
    ASSERT_EQ(Build(), 1);
    EXPECT_EQ(host.frames[2].transparentIndex, -1);
    EXPECT_EQ(PixelAt(host.frames[2].image.Get(), 0, 0), 28U); // green among the default palette's 256

    // In true colour what stays turns black, which is what the index then says.
    host.frames.clear();
    pluginSettings.TransitionTruecolour = 1;
    ASSERT_EQ(Build(), 1);
    EXPECT_EQ(host.frames[1].transparentIndex, 0);
    EXPECT_EQ(PixelAt(host.frames[1].image.Get(), 0, 0), 0U);
    EXPECT_EQ(PixelAt(host.frames[1].image.Get(), 3, 0), 0xFF0000U);
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
                          {2, kNone, 0, 0, 0, 0},
                          {2, kDiamond, 0, 1, 1, 8 + 1},
                          {2, kNone, 1, 0, 1, 0},
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
        const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
        int points = 0, tolerated = 0;
        for (std::int64_t n = 1;; ++n) {
            host.messages.clear();
            allocation_hooks::FailNth(n);
            const int built = BuildAnimation(own, 0, host.context, TaskKind::Build);
            const bool failed = allocation_hooks::HasFailed();
            allocation_hooks::FailNth(0);
            EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks) << n;
            EXPECT_EQ(allocation_hooks::LiveLocks(), locks) << n;
            EXPECT_EQ(own.Count(), c.pictures);
            EXPECT_EQ(host.waitCursors, 0);
            if (!failed) {
                EXPECT_EQ(built, 1);
                break;
            }
            ++points;
            if (built == 1) ++tolerated;
            EXPECT_EQ(host.messages.size(), built == 1 ? 0U : 1U) << n;
            if (built == 0) {
                EXPECT_EQ(host.messages.back(), "Memory error");
            }
        }
        EXPECT_GT(points, 8);
        EXPECT_EQ(tolerated, c.tolerated);
    }
}

/// What whole builds come to, equal on every platform.
TEST_F(BuildDriver, ChecksumsOfWholeBuilds) {
    struct Case {
        int transition;
        std::uint32_t palette, dither, trueColour, optimal;
        std::uint64_t checksum;
    };
    const Case cases[] = {
        {kEllipse, 6, 1, 0, 0, 0x4A7CA20411AD429F},     {kEllipse, 6, 0, 0, 0, 0xA2D398A1BCDB334C},
        {kDiamond, 0, 1, 0, 0, 0x7B768D753BD8021B},     {kDiamond, 0, 0, 0, 0, 0x3C17E629C9700C5},
        {kSilentMovie, 1, 1, 0, 0, 0x626AA51AA06CBD38}, {kSilentMovie, 2, 0, 0, 0, 0x63D9D235C2763F2B},
        {kNone, 5, 1, 0, 0, 0x96BA79CE7069C75D},        {kEllipse, 8, 0, 0, 0, 0x2D6BC31A332B4713},
        {kDiamond, 0, 0, 1, 0, 0xAC21CC46C1FFA7EA},     {kEllipse, 0, 1, 0, 1, 0x0E5FB0F78A50213A},
        {kDiamond, 0, 0, 0, 1, 0xD2862E50511015DD},     {kDiamond, 0, 0, 1, 1, 0x6380A736B4FE5BBD},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << c.transition << ", palette " << c.palette);
        pluginSettings.TransitionPalette = c.palette;
        pluginSettings.TransitionDither = c.dither;
        pluginSettings.TransitionTruecolour = c.trueColour;
        pluginSettings.TransitionCustompalette = pluginSettings.Supercompress = c.optimal;
        TestList own;
        own.Add(BusyPicture(61, 47, 1), c.transition, 5, 5);
        own.Add(NoisePicture(33, 21, 8, 2), c.transition, 5, 5);
        host.frames.clear();
        ASSERT_EQ(BuildAnimation(own, 0, host.context, TaskKind::Build), 1);
        Checksum sum;
        for (const RecordedFrame& frame : host.frames) {
            const LockedDib image(frame.image.Get());
            sum.Add(*image);
        }
        EXPECT_EQ(sum.Value(), c.checksum) << std::hex << sum.Value();
    }
}

} // namespace
} // namespace lumafold::test
