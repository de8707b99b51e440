// Building from the dialog: what comes of the list and the dialog, whatever the host does meanwhile.
#include <cstring>

#include "resources/texts/strings.h"
#include "tests/windows/dialog_fixture.h"

namespace lumafold::test {
namespace {

class Building : public DialogTest {
protected:
    Building() {
        KeepList({pictures.Add("a", BusyPicture(20, 61, 3)), pictures.Add("b", BusyPicture(27, 54, 3)),
                  pictures.Add("c", BusyPicture(34, 47, 3))});
    }
    void OpenForBuilding(const std::string& settings) {
        WriteFileBytes(files.Settings(), settings + "TransitionPause = 31\r\nTransitionDelay = 4\r\n");
        Open();
        host.commands.clear();
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
};

TEST_F(Building, LeavesTheListAloneAfterTheLineOfOnePicture) {
    KeepList({pictures.Add("a", BusyPicture(20, 41, 3))});
    OpenForBuilding("TransitionType = 23\r\nTransitionTruecolour = 1\r\nTransitionMattcolour = 255\r\n");
    DoubleClickItem(0);
    Type(LUMAFOLD_OVERRIDE_PAUSE, "77");
    Click(IDOK);
    const ImageEntry before = Entry(0);
    Type(LUMAFOLD_MAIN_DELAY, "3000");
    for (int i = 0; i < 2; ++i) {
        host.frames.clear();
        Click(LUMAFOLD_MAIN_TEST);
        EXPECT_EQ(Names(), "a");
        EXPECT_EQ(Current(), 0);
        const ImageEntry after = Entry(0);
        EXPECT_EQ(std::memcmp(&after, &before, sizeof(after)), 0);
    }
    EXPECT_EQ(PixelAt(host.frames.at(0).image.Get(), 9, 9), 0x0000FFU);
    EXPECT_EQ(host.task.owner, static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(Dialog())));
    Close(IDOK);
    EXPECT_EQ(files.Setting("TransitionDelay"), 1000) << "what the controls say is taken into the settings";
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

TEST_F(Building, SpeaksAsItsStringTableDoes) {
    char original[MAX_PATH];
    GetModuleFileNameA(GetModuleHandleA("lumafold.dll"), original, MAX_PATH);
    const std::string translated = pictures.Path() + "lumafold.dll";
    CopyFileA(original, translated.c_str(), FALSE);
    // Sixteen texts make a block, each behind its length: here the number that it has in it.
    std::u16string block;
    for (int i = 0; i < 16; ++i)
        block += i < 10 ? std::u16string{1, static_cast<char16_t>('0' + i)} : std::u16string(1, 0);
    const HANDLE update = BeginUpdateResourceA(translated.c_str(), FALSE);
    for (const int number : {0, LUMAFOLD_STRING_PALETTE})
        UpdateResourceA(update, RT_STRING, MAKEINTRESOURCEA(number / 16 + 1),
                        MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), block.data(),
                        static_cast<DWORD>(block.size() * 2));
    ASSERT_TRUE(EndUpdateResourceA(update, FALSE));
    Reload(translated);
    OpenForBuilding("TransitionType = 24\r\nTransitionSoftSlideStep = 0\r\nTransitionPalette = 7\r\n");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_PALETTE), "7");
    Click(LUMAFOLD_MAIN_TEST); // which a step of 0 ends
    EXPECT_EQ(AnswerMessage(), "6");
    Close();
}

TEST_F(Building, TakesNoOrdersWhileTheHostIsAtWork) {
    OpenForBuilding("TransitionType = 14\r\n");
    const HWND dialog = Dialog();
    const HCURSOR wait = LoadCursor(nullptr, IDC_WAIT);
    bool waited = false, amiss = false;
    host.answer = [&](std::uint32_t) -> std::optional<std::int32_t> {
        // What is pumped later may be a mouse move, which gives the pointer its shape back.
        if (host.commands.size() == 1) waited = GetCursor() == wait;
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            const bool label = (SendMessageA(child, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) != 0;
            amiss = amiss || (host.Count(5) == 0 && (IsWindowEnabled(child) != 0) != label);
        }
        for (const int id : {IDOK, IDCANCEL, LUMAFOLD_MAIN_TEST, LUMAFOLD_MAIN_ADD, LUMAFOLD_MAIN_REMOVE,
                             LUMAFOLD_MAIN_ADVANCED, LUMAFOLD_MAIN_ABOUT, LUMAFOLD_MAIN_CUSTOM_PALETTE}) {
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
    EXPECT_FALSE(amiss) << "a control took clicks while the build ran, or a label was greyed";
    ASSERT_EQ(Dialog(), dialog);
    EXPECT_EQ(Enabled(LUMAFOLD_MAIN_PALETTE), !Checked(LUMAFOLD_MAIN_CUSTOM_PALETTE));
    EXPECT_TRUE(Enabled(IDOK) && Enabled(LUMAFOLD_MAIN_REMOVE) && Enabled(LUMAFOLD_MAIN_DELAY));
    EXPECT_EQ(Names(), "a b c");
    EXPECT_EQ(host.Count(5), 1);
    ASSERT_EQ(host.frames.size(), 3U);
    for (const RecordedFrame& frame : host.frames)
        EXPECT_EQ(frame.delay, 31);
    EXPECT_EQ(Entry(0).pause, 99) << "what was typed counts afterwards";

    host.chosen = 0;
    host.answer = [&](std::uint32_t command) -> std::optional<std::int32_t> {
        if (command == 4) SendMessageA(dialog, WM_CLOSE, 0, 0); // with nothing pumped after it
        return std::nullopt;
    };
    Click(LUMAFOLD_MAIN_TEST);
    AddFiles({pictures.Add("d", PlainPicture(3, 3, 0))});
    Click(LUMAFOLD_MAIN_MATTE);
    Click(LUMAFOLD_ID_HELP);
    host.answer = nullptr;
    ASSERT_EQ(Dialog(), dialog);
    EXPECT_EQ(Names(), "a d b c");
    for (const std::uint32_t command : {7U, 8U, 9U, 11U})
        EXPECT_EQ(host.Count(command), 1) << command;
    Close(IDOK);
    EXPECT_EQ(host.Count(1), 1);
}

} // namespace
} // namespace lumafold::test
