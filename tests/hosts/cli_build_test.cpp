// Whole builds by the command line, and what they leave on the disk.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

#include <nlohmann/json.hpp>

#include "codecs/frame_changes.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/frames_folder.h"
#include "hosts/cli/recording_host.h"
#include "platform/files.h"
#include "plugin/protocol/host.h"
#include "tests/hosts/cli_fixture.h"

namespace lumafold::test {
namespace {

/// Counts frames, and wants no more than two.
struct TwoFrames final : FrameSink {
    void Begin(const AnimationFacts&, std::size_t) override { taken = 0; }
    void Add(const FrameView&) override {
        if (taken == 2) throw AnimationError("no more");
        ++taken;
    }
    int taken = 0;
};

TEST(RecordingHost, TakesFramesOfItsOpenTaskInOrderAndDropsAnAbandonedOne) {
    std::ostringstream screen;
    Progress progress(screen, ProgressStyle::Silent);
    TwoFrames frames;
    RecordingHost recording(3, progress, screen, frames);
    const Host host(recording.Context());
    const OwnedDib picture = PlainPicture(2, 2, 5);
    TaskRecord task{}, other{};
    ImageRecord frame{};
    frame.image = picture.Get();
    EXPECT_FALSE(host.CreateTask(TaskKind::Build, task)) << "no pixels";
    task.width = task.height = other.width = other.height = 2;
    EXPECT_FALSE(host.AddFrame(task, frame)) << "before there is a task";
    EXPECT_TRUE(host.CreateTask(TaskKind::Build, task));
    EXPECT_FALSE(host.CreateTask(TaskKind::Test, other)) << "one is open";
    EXPECT_FALSE(host.AddFrame(other, frame)) << "another task";
    EXPECT_TRUE(host.AddFrame(task, frame));
    EXPECT_FALSE(host.AddFrame(task, frame)) << "the same index again";
    frame.index = 1;
    frame.image = 0;
    EXPECT_FALSE(host.AddFrame(task, frame)) << "no picture";
    for (const DibHandle bad : {1U, 0xDEADBEEFU}) {
        frame.image = bad;
        EXPECT_FALSE(host.AddFrame(task, frame)) << bad;
    }
    host.FinishTask(task, TaskEnd::Abandoned);
    EXPECT_FALSE(recording.Complete());
    // Hosts made later are gone, or another thread's; threads without one of their own are this one's.
    TwoFrames theirs;
    std::optional<RecordingHost> inner(std::in_place, 3, progress, screen, theirs), away;
    inner.reset();
    std::thread([&] {
        EXPECT_TRUE(host.CreateTask(TaskKind::Build, task)) << "after an abandoned one";
    }).join();
    inner.emplace(3, progress, screen, theirs);
    std::thread([&] { away.emplace(3, progress, screen, theirs); }).join();
    inner.reset();
    frame.index = 0;
    frame.image = picture.Get();
    EXPECT_TRUE(host.AddFrame(task, frame));
    frame.index = 1;
    EXPECT_TRUE(host.AddFrame(task, frame));
    frame.index = 2;
    EXPECT_FALSE(host.AddFrame(task, frame)) << "the taker of frames gave up";
    EXPECT_EQ(recording.Fault(), "no more");
    host.FinishTask(task, TaskEnd::Complete);
    EXPECT_TRUE(recording.Complete());
    EXPECT_EQ(frames.taken, 2) << "after a new beginning";
    char names[1000] = {};
    EXPECT_FALSE(host.ChooseFiles(0, names) || host.ClipboardPicture(0) != 0 ||
                 host.LoadPicture("/no.png") != 0);
    recording.Fail(BuildFailure::Frame);
    EXPECT_EQ(screen.str(), "") << "the reason is told elsewhere";
    RecordingHost(3, progress, screen, frames).Fail(BuildFailure::Memory);
    EXPECT_EQ(screen.str(), "lumafold: Memory error\n");
}

TEST_F(CommandLineTest, TaskJsonIsExact) {
    PutPicture("a.bmp", 7, 5, 1);
    PutPicture("b.bmp", 3, 9, 200);
    const Ran ran = Run("build --transition None --pause 12 %/a.bmp --pause 34 %/b.bmp --palette 0 "
                        "--no-supercompress -o %/out/");
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_NE(ran.out.find(": 2 frames, 7x9, 2 colours, 0.46 s, "), std::string::npos) << ran.out;

    const auto task = nlohmann::json::parse(Get("out/task.json"));
    const std::string colours = task["palette"].dump(), comment = task["comment"].dump();
    EXPECT_EQ(colours.find("[[0,0,0],[255,255,255],"), 0u) << colours;
    EXPECT_EQ(task["palette"].size(), 256u);
    EXPECT_EQ(task["comment"], static_cast<const char*>(kDescriptiveComment));
    EXPECT_EQ(
        Get("out/task.json"),
        "{\n\"width\": 7,\n\"height\": 9,\n\"paletteBits\": 1,\n\"palette\": " + colours +
            ",\n\"frameCount\": 2,\n\"frames\": ["
            "{\"file\":\"frame-0000.bmp\",\"delay\":12,\"transparentIndex\":-1},"
            "{\"file\":\"frame-0001.bmp\",\"delay\":34,\"transparentIndex\":-1}],\n"
            "\"comment\": " +
            comment +
            ",\n\"commands\": ["
            "[10,0,\"Calculating\"],[13,1,\"2\"],[13,2,\"2\"],[10,0,\"Adjusting\"],[13,1,\"2\"],[13,2,\"2\"],"
            "[13,0,\"0\"],[10,0,\"Building\"],[13,1,\"2\"],[13,2,\"2\"],[13,0,\"0\"],"
            "[13,0,\"0\"],[10,0,\"Remapping\"],[13,0,\"2\"],[13,1,\"2\"],[13,0,\"0\"],"
            "[1,0,\"\"],[2,0,\"\"],[2,0,\"\"],[3,0," +
            comment + "],[4,1,\"\"]]\n}\n");
}

TEST_F(CommandLineTest, FramesAreThePackedBitmapsByteForByte) {
    PutPicture("a.bmp", 7, 5, 1);
    PutPicture("b.bmp", 7, 5, 90);
    std::filesystem::create_directory(Path("out")); // an existing folder needs no slash
    for (const char* name : {"frame-0002.bmp", "frame-12345.bmp", "frame-0003.bmp.txt", "notes"})
        Put(std::string("out/") + name, "old");
    const Ran ran = Run("build -q --transition 14 %/a.bmp %/b.bmp --true-colour -o %/out");
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(ran.out + ran.err, "") << "quiet";
    // In true colour a picture of the canvas' size comes through untouched.
    EXPECT_EQ(Get("out/frame-0000.bmp"), Get("a.bmp"));
    EXPECT_EQ(Get("out/frame-0001.bmp"), Get("b.bmp"));
    const std::vector<std::string> left{"a.bmp",
                                        "b.bmp",
                                        "out",
                                        "out/frame-0000.bmp",
                                        "out/frame-0001.bmp",
                                        "out/frame-0003.bmp.txt",
                                        "out/notes",
                                        "out/task.json"};
    EXPECT_EQ(Names(), left) << "frames of a longer run go, all else stays";

    ASSERT_EQ(Run("build -q --transition 14 %/a.bmp %/b.bmp --palette=6 -o %/out").status, 0);
    const std::string file = Get("out/frame-0000.bmp");
    ASSERT_EQ(file.size(), 14u + 40 + 1024 + 8 * 5);
    EXPECT_EQ(file.substr(2, 4), std::string("\x5E\x04\0\0", 4)) << "its own size";
    EXPECT_EQ(file.substr(10, 4), std::string("\x36\x04\0\0", 4)) << "where the rows begin";
}

TEST_F(CommandLineTest, NamesMayHaveForeignLetters) {
    const std::string name = "gr\xC3\xBC\xC3\x9F"; // UTF-8, on Windows too
    PutPicture(name + ".bmp", 3, 3, 1);
    for (const std::string suffix : {".gif", "/"}) {
        const Ran ran = Run("build -q --transition None %/" + name + ".bmp -o %/" + name + suffix);
        EXPECT_EQ(ran.status, 0) << ran.err;
    }
    EXPECT_EQ(Names(), (std::vector<std::string>{name, name + ".bmp", name + ".gif", name + "/frame-0000.bmp",
                                                 name + "/frame-0001.bmp", name + "/task.json"}));
    EXPECT_NE(Run("build %/" + name + ".bmp -o %/no" + name + "/a.gif").err.find("no" + name),
              std::string::npos);
}

TEST_F(CommandLineTest, OnePictureFadesToTheMatteColourByTheLastValues) {
    PutPicture("a.bmp", 3, 3, 1);
    const Ran ran =
        Run("build -q --transition None --pause 1 %/a.bmp --pause 2 -o %/out/ --set TransitionTruecolour=1 "
            "--set TransitionMattcolour=0x010203 --test-build --set AddDescriptiveCommentBlock=0");
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(Get("out/frame-0000.bmp").substr(54, 9), std::string("\1\2\3\1\2\3\1\2\3"));
    EXPECT_EQ(Get("out/frame-0001.bmp"), Get("a.bmp"));
    const std::string json = Get("out/task.json");
    for (const char* text : {"\"delay\":2,\"transparentIndex\":-1},{\"file\":\"frame-0001.bmp\",\"delay\":1",
                             "[5,0,\"\"],[2,0,\"\"],[2,0,\"\"],[4,1,\"\"]]", "\"comment\": \"\""})
        EXPECT_NE(json.find(text), std::string::npos) << text;
}

TEST_F(CommandLineTest, TrueColourIsSupercompressedOnlyWhenAsked) {
    PutPicture("a.bmp", 5, 3, 1);
    const auto sent = [&](const std::string& options, const std::string& output) {
        const std::string err = Run("build -v %/a.bmp -o %/" + output + " " + options).err;
        return std::string(err.find("Quantizing\n") != std::string::npos ? "palette " : "") +
               (err.find("Supercompressing\n") != std::string::npos ? "marks" : "");
    };
    for (const char* output : {"x/", "x.png", "x.mng"}) {
        EXPECT_EQ(sent("--true-colour", output), "") << output;
        EXPECT_EQ(sent("--true-colour --supercompress", output), "marks") << output;
        EXPECT_EQ(sent("", output), "palette marks") << output;
    }
    EXPECT_EQ(sent("--true-colour", "x.GIF"), "palette marks") << "a GIF gets a palette after all";
    EXPECT_EQ(Run("build %/a.bmp -o %/x.gif --true-colour").err,
              "lumafold: a GIF holds no true colour, so the frames get a palette\n");
    EXPECT_EQ(sent("--no-supercompress --palette 2", "x.gif"), "");
}

TEST_F(CommandLineTest, EstimatesAreTheTrueSizeAndWriteNothing) {
    PutPicture("a.bmp", 33, 1, 1);
    PutPicture("b.bmp", 1, 21, 9);
    const auto with = [&](const std::string& options) {
        return Run("build -q --transition Burp %/a.bmp %/b.bmp " + options);
    };
    ASSERT_EQ(with("-o %/x.gif --sheet %/s.png").status + with("-o %/x/ --true-colour").status, 0);
    EXPECT_EQ(Get("x.gif").substr(0, 10) + Get("s.png").substr(1, 3),
              std::string("GIF89a\x21\0\x15\0PNG", 13));
    std::size_t folder = 0;
    for (const std::string& name : Names()) {
        if (name.starts_with("x/")) folder += Get(name).size();
    }
    const auto before = Names();
    for (const auto& [options, size] : {std::pair{"--estimate", Get("x.gif").size()},
                                        {"--estimate -o %/missing/x.gif", Get("x.gif").size()},
                                        {"--estimate -o %/missing/x/ --true-colour", folder}}) {
        const Ran ran = with(options);
        EXPECT_EQ(ran.status, 0) << ran.err;
        EXPECT_EQ(ran.out.find("nothing written: 40 frames, 33x21, "), 0u) << ran.out;
        EXPECT_NE(ran.out.find(", 3.90 s, "), std::string::npos) << ran.out;
        EXPECT_NE(ran.out.find("(" + std::to_string(size) + " bytes)"), std::string::npos) << ran.out;
        EXPECT_EQ(ran.out.find("true colour") != std::string::npos, size == folder);
    }
    EXPECT_EQ(Names(), before);
}

/// The delays of the frames of a folder, or what a GIF's blocks say of them and of the plays.
std::string Timing(const std::string& file) {
    std::string text;
    for (std::size_t at = file.find("\"delay\":"); at != std::string::npos;
         at = file.find("\"delay\":", at + 1))
        text += std::to_string(std::stoi(file.substr(at + 8))) + " ";
    const auto number = [&](std::size_t at) {
        return std::to_string(static_cast<unsigned char>(file[at]) +
                              256 * static_cast<unsigned char>(file[at + 1]));
    };
    for (std::size_t at = file.find("\x21\xF9\x04"); at != std::string::npos;
         at = file.find("\x21\xF9\x04", at + 1))
        text += number(at + 4) + " ";
    const std::size_t loop = file.find("NETSCAPE2.0\x03\x01");
    return text + (loop == std::string::npos ? "once" : "loop " + number(loop + 13));
}

TEST_F(CommandLineTest, OrderEndAndDelaysAreAsAsked) {
    for (const auto& [name, seed] : {std::pair{"a.bmp", 1U}, {"b.bmp", 60U}, {"c.bmp", 200U}})
        PutPicture(name, 5, 5, seed);
    const struct {
        const char *options, *output, *timing;
    } kCases[] = {
        {"--transition None", "x.gif", "10 20 30 loop 0"},
        {"--transition None --reverse --loop 3", "x.gif", "30 20 10 loop 2"},
        {"--transition None --ping-pong --loop 1", "x.gif", "10 20 30 20 once"},
        {"--transition None --ping-pong --reverse --once", "x.gif", "30 20 10 20 30 once"},
        {"--transition 24 --set TransitionSoftSlideStep=40 --delay 1", "x/task.json",
         "10 1 1 20 1 1 30 1 1 once"},
        {"--transition 24 --set TransitionSoftSlideStep=40 --delay 1", "x.gif", "8 2 2 18 2 2 28 2 2 loop 0"},
        {"--transition 24 --set TransitionSoftSlideStep=40 --delay 1 --exact-delays --once", "x.gif",
         "10 1 1 20 1 1 30 once"},
    };
    for (const auto& row : kCases) {
        // Each picture is told by its pause.
        const Ran ran = Run(std::string("build -q ") + row.options +
                            " --pause 10 %/a.bmp --pause 20 %/b.bmp --pause 30 %/c.bmp -o %/" +
                            (row.output[1] == '/' ? "x/" : row.output));
        ASSERT_EQ(ran.status, 0) << ran.err;
        EXPECT_EQ(Timing(Get(row.output)), row.timing) << row.options;
    }
    const Ran longer = Run("build --transition None --pause 70000 %/a.bmp %/b.bmp -o %/x.gif");
    EXPECT_EQ(Timing(Get("x.gif")), "65535 65535 loop 0");
    EXPECT_NE(longer.out.find("1310.70 s"), std::string::npos) << longer.out;
    EXPECT_NE(longer.err.find("2 frames stand for 655.35 s instead of longer"), std::string::npos);
}

TEST_F(CommandLineTest, EveryKindSaysHowOftenItIsPlayed) {
    PutPicture("a.bmp", 5, 5, 1);
    PutPicture("b.bmp", 5, 5, 99);
    // Three plays and one, as each format writes them behind its mark.
    const struct {
        const char *output, *mark;
        std::string three, one;
    } kCases[] = {
        {"x.gif", "NETSCAPE2.0", {"\3\1\2\0", 4}, "no mark"},
        {"x.png", "acTL", {"\0\0\0\2\0\0\0\3", 8}, {"\0\0\0\2\0\0\0\1", 8}},
        {"x.mng", "TERM", {"\3\0\0\0\0\0\0\0\0\3", 10}, {"\0", 1}},
#if LUMAFOLD_WEBP
        {"x.webp", "ANIM", {"\6\0\0\0\xFF\xFF\xFF\xFF\3\0", 10}, {"\6\0\0\0\xFF\xFF\xFF\xFF\1\0", 10}},
#endif
    };
    for (const auto& row : kCases) {
        for (const auto& [plays, expected] : {std::pair{"3", row.three}, {"1", row.one}}) {
            const Ran ran = Run(std::string("build -q --transition None %/a.bmp %/b.bmp --loop ") + plays +
                                " -o %/" + row.output);
            ASSERT_EQ(ran.status, 0) << ran.err;
            const std::string file = Get(row.output);
            const std::size_t mark = file.find(row.mark);
            const std::size_t behind = mark + std::string(row.mark).size();
            EXPECT_EQ(mark == std::string::npos ? "no mark" : file.substr(behind, expected.size()), expected)
                << row.output << ' ' << plays;
        }
    }
}

TEST_F(CommandLineTest, PicturesComeAndAnimationsGoThroughTheStandardStreams) {
    PutPicture("a.bmp", 9, 5, 1);
    PutPicture("b.bmp", 9, 5, 99);
    ASSERT_EQ(Run("build %/a.bmp %/b.bmp -o %/x.gif").status, 0);
    const Ran ran = Run("build %/a.bmp - -o - --format gif --json", Get("b.bmp"));
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out, Get("x.gif"));
    const auto line = nlohmann::json::parse(ran.err);
    EXPECT_EQ(line["file"], "-");
    EXPECT_EQ(line["size"], ran.out.size());
    EXPECT_EQ(std::to_string(line["width"].get<int>()) + "x" + line["height"].dump(), "9x5");
    EXPECT_GT(line["frames"], 2);
    EXPECT_GT(line["seconds"], 0);
    EXPECT_GT(line["peakMemory"], 100000);
}

TEST_F(CommandLineTest, WhatDoesNotFitIsToldBeforeItIsBuilt) {
    PutPicture("a.bmp", 61, 47, 1);
    PutPicture("b.bmp", 33, 21, 2);
    // Every level that a bar fades through is a frame, which makes millions of them for twenty bars.
    for (const auto& [words, told] :
         {std::pair{"-o %/x.gif --memory-limit 1 --set TransitionAlphaTileStep=256",
                    "9.6 MB: 1040 frames of 61x47; the limit is 1.0 MB"},
          {"-o %/x.y4m --memory-limit 1 --true-colour --set TransitionAlphaTileStep=256",
           "13.6 MB: 1040 frames of 61x47; the limit is 1.0 MB"},
          {"-o %/x.gif --memory-limit 100000 --set TransitionAlphaTileStep=5000000",
           "192.0 GB: 20975110 frames of 61x47; the limit is 100.0 GB"}}) {
        const std::string err = Run(std::string("build %/a.bmp %/b.bmp -q ") + words).err;
        EXPECT_TRUE(
            err.ends_with("lumafold: the animation would need " + std::string(told) + " (--memory-limit)\n"))
            << err;
    }
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.bmp", "b.bmp"}));
}

TEST_F(CommandLineTest, FailuresSayWhyInOneLineAndWriteNothing) {
    PutPicture("a.bmp", 7, 5, 1);
    Put("empty.png", "");
    Put("words.png", "these are only words");
    Put("old.gif", "old");
    std::filesystem::create_directories(Path("taken/frame-0001.bmp/inside"));
    const struct {
        int status;
        const char *words, *expected; // in the folder
    } kCases[] = {
        {1, "%/none.png -o %/x.gif", "%/none.png: there is no such file or folder"},
        {1, "%/empty.png -o %/old.gif", "%/empty.png: the file is empty"},
        {1, "%/taken -o %/x.gif", "%/taken: this is a folder"},
        {1, "%/words.png -o %/new/", "%/words.png: this is no PNG, JPEG, "},
        {2, "-o %/x.tiff", "-o %/x.tiff: the suffix .tiff means no known kind"},
        {2, "-o %/x", "-o %/x: a name without a suffix"},
        {1, "-o %/no/x.gif", "-o %/no/x.gif: the folder %/no"},
        {1, "-o %/no/deep/", "-o %/no/deep/: the folder %/no"},
        {1, "-o %/a.bmp/", "-o %/a.bmp/: is not a folder"},
        {1, "-o %/taken/", "%/taken/frame-0001.bmp: is a folder"},
        {1, "-o %/x.gif --sheet %/no/s.png", "--sheet %/no/s.png"},
        {2, "-o %/x.gif --sheet %/s.jpg", "--sheet %/s.jpg"},
        {2, "--estimate -o %/x.tiff", "-o %/x.tiff"},
        {1, "--set TransitionIrisStep=0 --transition 23 %/a.bmp %/a.bmp -o %/x.gif",
         "Soft iris (ellipse) cannot run with TransitionIrisStep=0\n"},
        {2, "%/old.gif -o %/./old.gif", "-o %/./old.gif: would replace the picture "},
        {2, "-o %/s.png --sheet %/./s.png", "--sheet %/./s.png: the animation"},
        {2, "%/out/frame-0000.bmp -o %/out/", "-o %/out/: would replace the picture "},
        {2, "%/out/task.json -o %/out/", "-o %/out/: would replace the picture "},
        {2, "@%/c.gif -o %/./c.gif", "-o %/./c.gif: would replace what is read"},
        {1, "@%/odd -o %/x.gif", "%/caf\\xE9.png: there is no such file or folder"},
        {2, "--config %/c.gif -o %/./c.gif", "-o %/./c.gif: would replace what is read"},
        {2, "-o -", "-o -: say which kind of file, with --format "},
        {2, "-o %/x/ --format gif", "-o %/x/: a folder of frames takes no --format"},
    };
    std::filesystem::create_directories(Path("out"));
    PutPicture("out/frame-0000.bmp", 7, 5, 1);
    Put("c.gif", Path("a.bmp"));
    Put("odd", Path("caf\xE9.png")); // no UTF-8
    const auto before = Names();
    for (const auto& row : kCases) {
        Ran ran = Run(std::string("build -q --transition None %/a.bmp ") + row.words);
        std::string expected = In(row.expected);
        EXPECT_EQ(ran.status, row.status) << expected;
        for (std::string* text : {&ran.err, &expected})
            std::replace(text->begin(), text->end(), kFolderSeparator, '/');
        EXPECT_EQ(ran.err.find("lumafold: " + expected), 0u) << ran.err;
        EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1) << ran.err;
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(Names(), before) << expected;
    }
    EXPECT_EQ(Get("old.gif"), "old");
}

TEST_F(CommandLineTest, ReadsNoStreamThatNeverEndsAndTellsWhenNoneIsTaken) {
    std::istringstream endless(std::string(1 << 20, '\0'));
    std::ostringstream err;
    std::ofstream full; // not open, so it takes nothing
    EXPECT_EQ(RunCommandLine(Words("build - -o " + Path("x.gif")), {endless, full, err}), 1);
    EXPECT_LT(endless.tellg(), 100);
    EXPECT_EQ(RunCommandLine(Words("palettes"), {endless, full, err}), 1);
    EXPECT_TRUE(err.str().ends_with("lumafold: the standard output takes no more\n")) << err.str();
}

} // namespace
} // namespace lumafold::test
