// Building from the dialog: the same animation as the engine makes by itself, whatever the host does
// meanwhile.
#include <cstring>
#include <utility>

#include "settings/config_file.h"
#include "tests/windows/dialog_fixture.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14;

class Building : public DialogTest {
protected:
    Building() {
        std::string lines;
        for (std::size_t i = kPictures; i-- > 0;) {
            const auto size = static_cast<std::int32_t>(20 + 7 * i);
            lines +=
                pictures.Add(std::string(1, static_cast<char>('a' + i)), BusyPicture(size, 61 - size, 3)) +
                "\r\n";
        }
        WriteFileBytes(files.List(), lines);
    }
    void OpenForBuilding(const std::string& settings) {
        WriteFileBytes(files.Settings(), settings + "TransitionPause = 31\r\nTransitionDelay = 4\r\n");
        Open();
        host.commands.clear();
    }
    /// What the engine makes of the same list under the settings that the dialog wrote.
    void ExpectWhatTheEngineMakes(TaskKind kind, const std::vector<ImageEntry>& entries,
                                  const std::vector<RecordedCommand>& commands,
                                  const std::vector<RecordedFrame>& frames, const TaskRecord& task) {
        const SettingsGuard guard;
        pluginSettings = {};
        ASSERT_TRUE(LoadSettings(files.Settings().c_str(), pluginSettings));
        RecordingHost reference;
        TestList list;
        list.defaultTransition = static_cast<std::int32_t>(pluginSettings.TransitionType);
        for (const ImageEntry& entry : entries) {
            const std::string bytes = ReadFileBytes(entry.label);
            OwnedDib picture(GlobalCreate(GlobalKind::Movable, bytes.size() - sizeof(BITMAPFILEHEADER)));
            std::memcpy(LockedDib(picture.Get()).Get(), bytes.data() + sizeof(BITMAPFILEHEADER),
                        bytes.size() - sizeof(BITMAPFILEHEADER));
            list.Add(std::move(picture), entry.transition, entry.pause, entry.delay);
        }
        ASSERT_EQ(BuildAnimation(list, 0, reference.context, kind), 1);
        reference.task.owner = task.owner;
        EXPECT_EQ(commands, reference.commands);
        EXPECT_EQ(std::memcmp(&task, &reference.task, sizeof(task)), 0);
        ASSERT_EQ(frames.size(), reference.frames.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const RecordedFrame &made = frames[i], &expected = reference.frames[i];
            EXPECT_EQ(std::tuple(made.delay, made.index, made.transparentIndex),
                      std::tuple(expected.delay, expected.index, expected.transparentIndex));
            EXPECT_EQ(BytesOf(made.image), BytesOf(expected.image)) << "frame " << i;
        }
    }
    /// What came for the host's own window waits until the plug-in is back, the test's question whether
    /// everything is dealt with among it.
    void PumpForDialogs() {
        std::vector<MSG> held;
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            if (message.hwnd == ui.Window()) {
                held.push_back(message);
                continue;
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        for (const MSG& message : held)
            PostMessageA(message.hwnd, message.message, message.wParam, message.lParam);
    }
    std::vector<ImageEntry> Entries() const {
        std::vector<ImageEntry> entries;
        for (int i = 0; i < Count(); ++i)
            entries.push_back(Entry(i));
        return entries;
    }

    static constexpr std::size_t kPictures = 3;
};

TEST_F(Building, MakesWhatTheEngineMakes) {
    for (const char* settings :
         {"TransitionType = 23\r\n", "TransitionType = 21\r\nTransitionCustompalette = 0\r\n",
          "TransitionType = 2\r\nTransitionTruecolour = 1\r\nAddDescriptiveCommentBlock = 0\r\n"}) {
        SCOPED_TRACE(settings);
        OpenForBuilding(std::string(settings) + "TransitionDither = 1\r\n");
        DoubleClickItem(1);
        Choose(LUMAFOLD_OVERRIDE_TRANSITION, kNone);
        Type(LUMAFOLD_OVERRIDE_PAUSE, "77");
        Click(IDOK);
        // What the controls say is taken into the settings.
        Click(LUMAFOLD_MAIN_DITHER);
        Type(LUMAFOLD_MAIN_DELAY, "3000");
        const std::vector<ImageEntry> entries = Entries();
        const HWND dialog = Dialog();
        Click(LUMAFOLD_MAIN_TEST);
        EXPECT_EQ(Dialog(), dialog);
        ASSERT_EQ(Count(), static_cast<int>(kPictures));
        for (int i = 0; i < Count(); ++i)
            EXPECT_EQ(std::memcmp(&Entries()[static_cast<std::size_t>(i)],
                                  &entries[static_cast<std::size_t>(i)], sizeof(ImageEntry)),
                      0);
        EXPECT_EQ(+host.task.owner, static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(dialog)));
        const auto testCommands = std::exchange(host.commands, {});
        const auto testFrames = std::exchange(host.frames, {});
        const TaskRecord testTask = host.task;
        Close(IDOK);
        EXPECT_EQ(files.Setting("TransitionDither"), 0);
        EXPECT_EQ(files.Setting("TransitionDelay"), 1000);
        ExpectWhatTheEngineMakes(TaskKind::Test, entries, testCommands, testFrames, testTask);
        ExpectWhatTheEngineMakes(TaskKind::Build, entries, host.commands, host.frames, host.task);
        host.frames.clear();
    }
}

TEST_F(Building, OnePictureFadesToTheMatteAndItsLineStaysAlone) {
    WriteFileBytes(files.List(), pictures.Add("a", BusyPicture(20, 41, 3)) + "\r\n");
    OpenForBuilding("TransitionType = 23\r\nTransitionTruecolour = 1\r\nTransitionMattcolour = 255\r\n");
    const std::vector<ImageEntry> entries = Entries();
    for (int i = 0; i < 2; ++i) {
        host.commands.clear();
        host.frames.clear();
        Click(LUMAFOLD_MAIN_TEST);
        EXPECT_EQ(Names(), "a");
        EXPECT_EQ(Current(), 0);
    }
    EXPECT_EQ(PixelAt(host.frames.at(0).image.Get(), 9, 9), 0x0000FFU);
    const TaskRecord task = host.task;
    Close();
    ExpectWhatTheEngineMakes(TaskKind::Test, entries, host.commands, host.frames, task);
}

TEST_F(Building, TellsOfEveryFailureOfTheHostAndGoesOn) {
    struct Case {
        int button;
        std::uint32_t command;
        int nth; ///< of these commands fails
        const char* message;
        RecordedCommand last;
    };
    const char* const frameError = "There has been an error adding an image to the current file object.";
    for (const Case& c : {Case{LUMAFOLD_MAIN_TEST, 5, 1, "Error creating new task.", {5, 0, ""}},
                          {LUMAFOLD_MAIN_TEST, 2, 1, frameError, {4, 0, ""}},
                          {LUMAFOLD_MAIN_TEST, 2, 3, frameError, {4, 0, ""}},
                          {LUMAFOLD_MAIN_TEST, 10, 1, "", {4, 1, ""}},
                          {LUMAFOLD_MAIN_TEST, 13, 1, "", {4, 1, ""}},
                          {LUMAFOLD_MAIN_TEST, 3, 1, "", {4, 1, ""}},
                          {LUMAFOLD_MAIN_TEST, 4, 1, "", {4, 1, ""}},
                          {IDOK, 1, 1, "Error creating new task.", {1, 0, ""}},
                          {IDOK, 2, 2, frameError, {4, 0, ""}}}) {
        SCOPED_TRACE(testing::Message() << "command " << c.command << " the " << c.nth << "th time");
        OpenForBuilding("TransitionType = 14\r\n");
        int seen = 0;
        host.answer = [&](std::uint32_t command) -> std::optional<std::int32_t> {
            return command == c.command && ++seen == c.nth ? std::optional(0) : std::nullopt;
        };
        Click(c.button);
        EXPECT_GE(seen, c.nth);
        EXPECT_EQ(AnswerMessage(), c.message);
        EXPECT_EQ(AnswerMessage(), "");
        EXPECT_EQ(host.commands.back(), c.last);
        host.answer = nullptr;
        if (c.button == IDOK) {
            ui.Finish(); // it closes all the same
            continue;
        }
        EXPECT_EQ(Names(), "a b c");
        host.commands.clear();
        Close(IDOK); // and a build that nothing disturbs works
        EXPECT_EQ(host.commands.back(), (RecordedCommand{4, 1, ""}));
    }
}

TEST_F(Building, TakesNoOrdersWhileTheHostIsAtWork) {
    OpenForBuilding("TransitionType = 14\r\n");
    const HWND dialog = Dialog();
    const HCURSOR wait = LoadCursor(nullptr, IDC_WAIT);
    bool waited = false;
    host.answer = [&](std::uint32_t) -> std::optional<std::int32_t> {
        // What is pumped later may be a mouse move, which gives the pointer its shape back.
        if (host.commands.size() == 1) waited = GetCursor() == wait;
        for (const int id : {IDOK, IDCANCEL, LUMAFOLD_MAIN_TEST, LUMAFOLD_MAIN_ADD, LUMAFOLD_MAIN_REMOVE,
                             LUMAFOLD_MAIN_ADVANCED, LUMAFOLD_MAIN_ABOUT}) {
            PostMessageA(GetDlgItem(dialog, id), BM_CLICK, 0, 0);
        }
        if (host.Count(5) == 0) SetDlgItemTextA(dialog, LUMAFOLD_MAIN_PAUSE, "99");
        PostMessageA(dialog, WM_CLOSE, 0, 0);
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(LUMAFOLD_MAIN_LIST, LBN_DBLCLK), 0);
        EXPECT_EQ(CallPlugin(), 1); // a second dialog does not open
        PumpForDialogs();
        return std::nullopt;
    };
    Click(LUMAFOLD_MAIN_TEST);
    EXPECT_TRUE(waited);
    ASSERT_EQ(Dialog(), dialog);
    EXPECT_EQ(Names(), "a b c");
    EXPECT_EQ(host.Count(5), 1);
    ASSERT_EQ(host.frames.size(), 3U);
    for (const RecordedFrame& frame : host.frames)
        EXPECT_EQ(frame.delay, 31);

    host.chosen = 0;
    AddFiles({pictures.Add("d", PlainPicture(3, 3, 0))});
    Click(LUMAFOLD_MAIN_MATTE);
    Click(LUMAFOLD_ID_HELP);
    host.answer = nullptr;
    ASSERT_EQ(Dialog(), dialog);
    EXPECT_EQ(Names(), "a d b c");
    for (const std::uint32_t command : {7U, 8U, 9U, 11U})
        EXPECT_EQ(host.Count(command), 1) << command;
    EXPECT_EQ(host.Count(1), 0);
    Close(IDOK);
    EXPECT_EQ(host.Count(1), 1);
}

} // namespace
} // namespace lumafold::test
