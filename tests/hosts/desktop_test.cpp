// The desktop program's parts that know no window.
#include <gtest/gtest.h>

#include <future>

#include "codecs/animation_writer.h"
#include "codecs/decode.h"
#include "hosts/common/paths.h"
#include "hosts/common/task_collector.h"
#include "hosts/desktop/document_set.h"
#include "hosts/desktop/file_address.h"
#include "hosts/desktop/host_settings.h"
#include "hosts/desktop/playback.h"
#include "hosts/desktop/saving.h"
#include "hosts/desktop/script_steps.h"
#include "hosts/desktop/view_picture.h"
#include "platform/files.h"
#include "tests/hosts/cli_fixture.h"
#include "tests/support/animations.h"

namespace lumafold::test {
namespace {

TEST(TaskCollector, RefusesPicturesThatAreNotWhole) {
    constexpr struct {
        const char* what;
        std::size_t at;
        std::uint8_t value;
    } kBroken[] = {{"header size", 0, 41}, {"width", 7, 0x7F},          {"negative width", 7, 0x80},
                   {"no width", 4, 0},     {"height", 8, 200},          {"depth", 14, 5},
                   {"no depth", 14, 0},    {"deeper than it is", 14, 8}};
    TaskRecord task{};
    task.width = task.height = 3;
    for (const auto& broken : kBroken) {
        TaskCollector collector(DelayUnit::Hundredths);
        ASSERT_TRUE(collector.Open(&task));
        const OwnedDib picture = NoisePicture(3, 3, 1, 1);
        ImageRecord frame{};
        frame.image = picture.Get();
        EXPECT_TRUE(collector.Add(&task, &frame));
        reinterpret_cast<std::uint8_t*>(LockedDib(picture.Get()).Get())[broken.at] = broken.value;
        frame.index = 1;
        EXPECT_FALSE(collector.Add(&task, &frame)) << broken.what;
        EXPECT_EQ(collector.Finish(&task, true)->frames.size(), 1U);
    }
}

TEST(TaskCollector, CountsDelaysInHundredths) {
    constexpr struct {
        std::uint32_t flags;
        std::int32_t delay, wanted;
    } kCases[] = {{1, 7, 7},  {3, -1, 0},       {2, 95, 10},
                  {2, 94, 9}, {0, 10000, 1000}, {2, 0x7FFFFFFF, 214748365}};
    const OwnedDib picture = PlainPicture(1, 1, 0);
    TaskRecord task{};
    task.width = task.height = 1;
    for (const auto& each : kCases) {
        TaskCollector collector(DelayUnitFor(each.flags));
        ImageRecord frame{};
        frame.image = picture.Get();
        frame.delay = each.delay;
        ASSERT_TRUE(collector.Open(&task) && collector.Add(&task, &frame));
        EXPECT_EQ(collector.Finish(&task, true)->frames[0].delay, each.wanted) << each.delay;
    }
}

TEST(Playback, ShowsEveryFrameForItsDelay) {
    Playback playback({5, 0, 20, -1});
    EXPECT_EQ(playback.TotalMilliseconds(), 50 + 100 + 200 + 100);
    EXPECT_EQ(playback.StartOf(2), 150);
    const std::uint32_t start = 0xFFFFFFC0; // the clock wraps round on the way
    playback.Play(start);
    constexpr struct {
        std::uint32_t after;
        std::size_t frame;
        std::uint32_t left;
    } kTimes[] = {{0, 0, 50},    {49, 0, 1},   {50, 1, 100}, {149, 1, 1},
                  {151, 2, 199}, {360, 3, 90}, {460, 0, 40}, {615, 2, 185}};
    for (const auto& time : kTimes) {
        playback.Advance(start + time.after);
        EXPECT_EQ(playback.Current(), time.frame) << time.after;
        EXPECT_EQ(playback.MillisecondsLeft(start + time.after), time.left) << time.after;
    }
    EXPECT_TRUE(playback.Advance(start + 60000)) << "after a long sleep";
    EXPECT_EQ(playback.Current(), 3U) << "only the next one";
    playback.Step(1);
    EXPECT_EQ(playback.Current(), 0U);
    EXPECT_FALSE(playback.IsPlaying());
    playback.Step(-1);
    EXPECT_EQ(playback.Current(), 3U);
    playback.Go(99);
    EXPECT_EQ(playback.Current(), 3U);
    EXPECT_FALSE(playback.Advance(start + 999));
    Playback one({7}), none;
    one.Play(0);
    none.Go(3);
    none.Step(1);
    EXPECT_FALSE(one.IsPlaying() || none.IsPlaying() || none.Current() != 0);
}

TEST(ViewPicture, ZoomsInStepsAndFits) {
    constexpr struct {
        std::int32_t width, height, roomWidth, roomHeight;
        int zoom;
    } kFits[] = {{480, 320, 740, 440, 100}, {480, 320, 960, 640, 200},   {1000, 10, 500, 400, 50},
                 {1, 1, 4000, 4000, 800},   {30000, 30000, 100, 100, 1}, {0, 5, 10, 10, 100},
                 {10, 10, -5, -5, 1}};
    for (const auto& fit : kFits)
        EXPECT_EQ(FittingZoom(fit.width, fit.height, fit.roomWidth, fit.roomHeight), fit.zoom) << fit.width;
    constexpr struct {
        int zoom, larger, smaller;
    } kSteps[] = {{100, 150, 67}, {73, 100, 67}, {25, 33, 25}, {3, 25, 25}, {800, 800, 600}};
    for (const auto& step : kSteps) {
        EXPECT_EQ(NextZoom(step.zoom, 1), step.larger) << step.zoom;
        EXPECT_EQ(NextZoom(step.zoom, -1), step.smaller) << step.zoom;
    }
}

TEST(ViewPicture, ShowsNearestPixelsOrAverages) {
    const ScreenPixels screen{0x0000FF, 0x00FF00, kNoPixel, 0x0000FF, 0x040000, 0x020000};
    std::vector<std::uint32_t> out;
    RenderView(screen, 3, 2, 200, {1, 0, 4, 3}, Backdrop::Plain, out);
    EXPECT_EQ(out, (std::vector<std::uint32_t>{0xFF0000, 0x00FF00, 0x00FF00, 0xFFFFFF, 0xFF0000, 0x00FF00,
                                               0x00FF00, 0xFFFFFF, 0xFF0000, 4, 4, 2}));
    RenderThumbnail(screen, 3, 2, 1, 2, out);
    EXPECT_EQ(out, (std::vector<std::uint32_t>{0xAAAA55, 0x550002}));
    RenderView(ScreenPixels(16 * 9, kNoPixel), 16, 9, 100, {0, 7, 16, 2}, Backdrop::Checkerboard, out);
    EXPECT_EQ(out[0], out[7]);
    EXPECT_NE(out[7], out[8]);
    EXPECT_EQ(out[8], out[16]);
}

TEST(Document, TellsWhatItIsAndSavesIt) {
    Animation animation = EmptyAnimation(61, 47, 8);
    AddFrame(animation, {8, 5}, [](int x, int) { return x > 3 ? 1U : 0U; });
    AddFrame(animation, {8, 50, 7}, [](int, int) { return 7U; });
    Document document(std::move(animation), "Animation 1", Origin::Build);
    EXPECT_EQ(TitleOf(document), "* Animation 1 - 2 frames, 61x47, 2 colors, 0.55 s");
    while (document.DrawThumbnails(1)) {
    }
    EXPECT_EQ(document.ThumbnailOf(1).height, kThumbnailHeight);
    document.TakeSize({999, false});
    EXPECT_EQ(document.FileSizeText(), "999 bytes");
    document.SetThumbnailHeight(2 * kThumbnailHeight);
    EXPECT_EQ(document.ThumbnailsDrawn(), 0U);
    EXPECT_EQ(document.ThumbnailOf(1).height, 2 * kThumbnailHeight);
    document.MarkSaved(std::string("folder") + kFolderSeparator + "b.gif", 1000);
    EXPECT_EQ(TitleOf(document), "b.gif - 2 frames, 61x47, 2 colors, 0.55 s, 1.0 kB");
}

TEST(DocumentSet, KeepsTheCurrentOneWhenAnEarlierOneCloses) {
    struct Watcher : DocumentWatcher {
        void CurrentChanged() override {}
        void StateChanged() override {}
        void BeforeClosing() override {}
    } watcher;
    DocumentSet set(watcher);
    for (const char* name : {"a", "b", "c"}) {
        Animation animation = EmptyAnimation(2, 2, 8);
        AddFrame(animation, {8, 5}, [](int, int) { return 0U; });
        set.Add(std::make_unique<Document>(std::move(animation), name, Origin::Build));
    }
    set.Select(1);
    const Document* current = set.Current();
    set.Close(0);
    EXPECT_EQ(set.Current(), current);
}

TEST(FileSize, IsEstimatedWhereWritingTakesLong) {
    Animation animation = EmptyAnimation(2000, 2000, 8);
    for (int i = 0; i < 8; ++i)
        AddFrame(animation, {8, 5}, [&](int x, int y) { return x < 200 && y == i ? 3U : 0U; });
    std::string error;
    const double exact = static_cast<double>(EncodeAnimation(AnimationKind::Gif, animation, error).size());
    std::promise<void> done;
    SizeMeasurer measurer([&] { done.set_value(); });
    const auto shared = std::make_shared<const Animation>(std::move(animation));
    measurer.Measure(shared);
    done.get_future().wait();
    const auto measured = measurer.Take();
    ASSERT_TRUE(measured && measured->animation == shared && measured->size.estimated);
    EXPECT_NEAR(static_cast<double>(measured->size.bytes), exact, exact / 2);
    EXPECT_FALSE(measurer.Take());
    measurer.Measure(shared); // given up as the program ends
}

TEST(Document, LetsNothingInThatCannotBeShown) {
    const auto make = [](std::int32_t width, bool picture) {
        Animation animation = EmptyAnimation(width, 2, 8);
        if (picture) AddFrame(animation, {8, 5, -1, 2, 2}, [](int, int) { return 0U; });
        if (!picture) animation.frames.push_back({OwnedDib(), 5, -1});
        Document(std::move(animation), "", Origin::Build);
    };
    EXPECT_THROW(make(0, true), AnimationError);
    EXPECT_THROW(make(40000, true), AnimationError);
    EXPECT_THROW(make(2, false), AnimationError);
    EXPECT_NO_THROW(make(5, true));
}

TEST_F(CommandLineTest, SavingTakesTheKindFromTheName) {
    Animation animation = EmptyAnimation(3, 2, 8);
    AddFrame(animation, {8, 5, 9}, [](int x, int) { return x == 1 ? 9U : 4U; });
    std::string error;
    std::uint64_t bytes = 0;
    constexpr struct {
        const char* name;
        const char* start;
    } kKinds[] = {{"a.gif", "GIF89a"}, {"a.b.PNG", "\x89PNG"}, {"a.apng", "\x89PNG"}, {"a.mng", "\x8AMNG"}};
    for (const auto& kind : kKinds) {
        EXPECT_TRUE(SaveAnimation(Path(kind.name), animation, {}, bytes, error)) << error;
        EXPECT_EQ(Get(kind.name).size(), bytes);
        EXPECT_EQ(Get(kind.name).substr(0, std::string(kind.start).size()), kind.start);
    }
    EXPECT_FALSE(SaveAnimation(Path("a.jpg"), animation, {}, bytes, error));
    EXPECT_NE(error.find(".gif"), std::string::npos);
    Put("frame-0007.png", "of an earlier run");
    ASSERT_TRUE(SaveFrames(Path(""), animation, {}, error)) << error;
    EXPECT_EQ(Get("frame-0007.png"), "");
    const DecodedPicture frame = DecodePictureFile(Path("frame-0000.png"), 0, 100);
    ASSERT_TRUE(frame.picture) << frame.error;
    EXPECT_EQ(PixelAt(frame.picture.Get(), 1, 1), 0xFFFFFFU);
    EXPECT_EQ(Stem("pics/a.b.gif") + Stem("x/.gif") + FileNamePart("x/y"), "a.b.gify");
}

TEST_F(CommandLineTest, SavingLeavesWhatWasThereWhenItIsGivenUp) {
    Animation animation = EmptyAnimation(3, 2, 8);
    for (int i = 0; i < 3; ++i)
        AddFrame(animation, {8, 5}, [&](int, int) { return i == 1 ? 3U : 0U; });
    const auto upToTheLast = [](std::size_t frame, std::size_t frames) { return frame + 1 < frames; };
    std::string error;
    std::uint64_t bytes = 0;
    for (const char* name : {"a.gif", "a.png", "a.mng"}) {
        Put(name, "old");
        EXPECT_FALSE(SaveAnimation(Path(name), animation, upToTheLast, bytes, error));
        EXPECT_EQ(error + Get(name), "cancelledold");
    }
    Put("frame-0000.png", "old");
    EXPECT_FALSE(SaveFrames(Path(""), animation, upToTheLast, error));
    EXPECT_EQ(Get("frame-0000.png"), "old");
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.gif", "a.mng", "a.png", "frame-0000.png"}));
    EXPECT_FALSE(SaveFrames(Path("new"), animation, upToTheLast, error));
    EXPECT_EQ(Names().size(), 4U) << "the folder is taken back";
}

TEST(Script, TakesLinesApart) {
    std::vector<ScriptStep> steps;
    std::string error;
    ASSERT_TRUE(ParseScript("# remark\r\n\n  add \"C:\\my pics\\a.png\" b.png # both\r\nset 107 #FF8040\n"
                            "transition 2 \"Soft iris (ellipse)\" 4\nexpect-message \"\"\nquit",
                            steps, error))
        << error;
    std::string all;
    for (const ScriptStep& step : steps)
        all += std::to_string(step.line) + " " + StepText(step) + "\n";
    EXPECT_EQ(all, "3 add \"C:\\my pics\\a.png\" b.png\n4 set 107 \"#FF8040\"\n5 override 2\n"
                   "5 set 102 \"Soft iris (ellipse)\"\n5 set 103 4\n5 ok\n6 expect-message \"\"\n7 quit\n");
    constexpr struct {
        const char* text;
        const char* error;
    } kWrong[] = {{"quit\nadd", "line 2: \"add\" says too little"},
                  {"quit now", "line 1: \"quit\" says too much"},
                  {"\n\ndance", "line 3: \"dance\" is no step"},
                  {"add \"a", "line 1: a quote is not closed"}};
    for (const auto& wrong : kWrong) {
        EXPECT_FALSE(ParseScript(wrong.text, steps, error));
        EXPECT_EQ(error, wrong.error);
    }
}

TEST(FileAddress, SpellsWhatABrowserWouldTakeForItsOwn) {
    constexpr std::pair<const char*, const char*> kAddresses[] = {
        {"C:\\Program Files\\a.html", "file:///C:/Program%20Files/a.html#x"},
        {"D:\\50%\\#1 & \xD1\x88?\\a.html", "file:///D:/50%25/%231%20%26%20%D1%88%3F/a.html#x"},
        {"\\\\server\\b.html", "file://server/b.html#x"}};
    for (const auto& [path, address] : kAddresses)
        EXPECT_EQ(FileAddress(path, "#x"), address);
}

TEST_F(CommandLineTest, HostSettingsComeBackAsTheyWereKept) {
    HostSettings kept;
    kept.window = {-5, 7, 800, 600};
    kept.checkerboard = false;
    kept.capabilities = 3;
    kept.hasCustomColours = true;
    kept.customColours[15] = 0xABCDEF;
    kept.openFiles = {"C:\\a=b;c.gif", "D:\\\xE8\x88\xB9 [x].png"};
    for (int i = 0; i < 12; ++i)
        kept.RememberRecent("file " + std::to_string(i));
    kept.RememberRecent("file 9");
    kept.Save(Path("new/folder/a.ini"));
    HostSettings read;
    read.Load(Path("new/folder/a.ini"));
    EXPECT_EQ(read.openFiles, kept.openFiles);
    ASSERT_EQ(read.recentFiles.size(), HostSettings::kMostRecent);
    EXPECT_EQ(read.recentFiles[0] + read.recentFiles[2] + read.recentFiles[3], "file 9file 10file 8");
    EXPECT_EQ(read.window.left + read.window.bottom + static_cast<int>(read.capabilities), 598);
    EXPECT_TRUE(!read.checkerboard && read.hasCustomColours && read.customColours == kept.customColours);
    Put("old.ini", "[Host]\nWindow=1,2,3\nCapabilities=8\nMaximised=1"); // an older version's, or a person's
    read = {};
    read.Load(Path("old.ini"));
    EXPECT_TRUE(read.maximised && read.checkerboard && read.openFiles.empty() && read.window.right == 0);
    EXPECT_EQ(read.capabilities, kHostTakesSupercompression);
}

} // namespace
} // namespace lumafold::test
