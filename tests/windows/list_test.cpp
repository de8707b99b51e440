// The image list: adding, pasting, removing, dragging, and its file.
#include "platform/files.h"
#include "tests/windows/dialog_fixture.h"

namespace lumafold::test {
namespace {

class ListDialog : public DialogTest {
protected:
    std::string Picture(const std::string& name) const {
        return pictures.Add(name, BusyPicture(23, 17, static_cast<std::uint32_t>(name[0])));
    }
    std::vector<std::string> Pictures(const std::string& letters) const {
        std::vector<std::string> paths;
        for (const char letter : letters)
            paths.push_back(Picture(std::string(1, letter)));
        return paths;
    }
    /// Opens with pictures of these names in the list, in this order.
    void OpenWith(const std::string& letters) {
        KeepList(Pictures(letters));
        Open();
        ASSERT_EQ(Count(), static_cast<int>(letters.size()));
    }
    void ExpectButtons(bool enabled) const {
        for (const int button : {IDOK, LUMAFOLD_MAIN_TEST, LUMAFOLD_MAIN_REMOVE}) {
            EXPECT_EQ(Enabled(button), enabled) << button;
        }
    }
};

TEST_F(ListDialog, AddsFilesBelowTheSelection) {
    Open();
    ExpectButtons(false);
    Type(LUMAFOLD_MAIN_DELAY, "7");
    Type(LUMAFOLD_MAIN_PAUSE, "77");
    Choose(LUMAFOLD_MAIN_TRANSITION, 14);
    AddFiles(Pictures("m"));
    ExpectButtons(true);
    AddFiles(Pictures("cab"));
    EXPECT_EQ(Names(), "m c b a");
    EXPECT_EQ(Current(), 3);
    ClickItem(1);
    AddFiles(Pictures("ZxY")); // capitals first
    EXPECT_EQ(Names(), "m c x Z Y b a") << "byte order is Y, Z, x";
    const ImageEntry entry = Entry(2);
    EXPECT_EQ(std::tuple(+entry.transition, +entry.pause, +entry.delay, +entry.flags),
              std::tuple(14, 77, 7, 0U));
    EXPECT_EQ(+entry.workImage, 0U);
    EXPECT_EQ(host.Texts(8),
              (std::vector<std::string>{pictures.Path() + "m", pictures.Path() + "a", pictures.Path() + "b",
                                        pictures.Path() + "c", pictures.Path() + "Y", pictures.Path() + "Z",
                                        pictures.Path() + "x"}));
    Close();
}

TEST_F(ListDialog, KeepsWhatCameBeforeAFileThatCannotBeRead) {
    OpenWith("m");
    WriteFileBytes(pictures.Path() + "b", "no picture");
    host.commands.clear();
    AddFiles({Picture("a"), pictures.Path() + "b", Picture("c")});
    EXPECT_EQ(AnswerMessage(), "Error reading file");
    EXPECT_EQ(Names(), "m a");
    EXPECT_EQ(host.Count(8), 2);
    ExpectButtons(true);
    // A path that no entry has room for is one that cannot be read, and ends the action like any other.
    host.commands.clear();
    AddBuffer(pictures.Path() + '\0' + std::string(261, 'A') + std::string("\0a\0\0", 4));
    EXPECT_EQ(AnswerMessage(), "Error reading file");
    EXPECT_EQ(AnswerMessage(), "");
    EXPECT_EQ(host.Count(8), 0) << "the picture after it was asked for";
    AddBuffer(""); // a cancel is silent
    EXPECT_EQ(Names(), "m a");
    Close();
}

TEST_F(ListDialog, PastesWhatTheHostHas) {
    const OwnedDib copied = PlainPicture(9, 4, 0x123456);
    FillClipboard(ui.Window(), copied);
    OpenWith("abc");
    ASSERT_TRUE(Enabled(LUMAFOLD_MAIN_PASTE));
    Click(LUMAFOLD_MAIN_PASTE);
    EXPECT_EQ(AnswerMessage(), "Clipboard error");
    EXPECT_EQ(Count(), 3);
    ClickItem(1);
    host.clipboard = BytesOf(copied);
    Click(LUMAFOLD_MAIN_PASTE);
    EXPECT_EQ(AnswerMessage(), "");
    EXPECT_EQ(Names(), "a b Clipboard image c");
    EXPECT_EQ(Current(), 3);
    EXPECT_EQ(host.commands.back().wparam, reinterpret_cast<std::uintptr_t>(Dialog()));

    // What is no picture, or no block at all, does not break anything.
    const HGLOBAL tiny = GlobalAlloc(GHND, 3);
    for (const auto garbage : {reinterpret_cast<std::intptr_t>(tiny), std::intptr_t{0x7FFF1235}}) {
        host.answer = [=](std::uint32_t) { return static_cast<std::int32_t>(garbage); };
        Click(LUMAFOLD_MAIN_PASTE);
        EXPECT_EQ(AnswerMessage(), "Clipboard error");
    }
    host.answer = nullptr;
    Close();
    FillClipboard(ui.Window(), OwnedDib());
    Open();
    EXPECT_EQ(Names(), "a b c") << "a pasted picture has no file";
    EXPECT_FALSE(Enabled(LUMAFOLD_MAIN_PASTE));
    Close();
}

TEST_F(ListDialog, RemovesAndSelectsTheNext) {
    OpenWith("abcd");
    const struct {
        int item, selected;
        const char* names;
    } cases[] = {{1, 1, "a c d"}, {2, 1, "a c"}, {0, 0, "c"}};
    for (const auto& c : cases) {
        ClickItem(c.item);
        Click(LUMAFOLD_MAIN_REMOVE);
        EXPECT_EQ(Names(), c.names);
        EXPECT_EQ(Current(), c.selected);
    }
    ExpectButtons(true);
    Click(LUMAFOLD_MAIN_REMOVE);
    EXPECT_EQ(Count(), 0);
    ExpectButtons(false);
    AddFiles(Pictures("e"));
    ExpectButtons(true);
    Close();
}

TEST_F(ListDialog, ReordersByDragging) {
    OpenWith("abc");
    // Upwards an item takes the target's place and stays selected.
    ClickItem(2);
    Drag(2, PointIn(0));
    EXPECT_EQ(Names(), "c a b");
    EXPECT_EQ(Current(), 0);
    // Downwards it lands just above the target, which is selected then.
    Drag(0, PointIn(2));
    EXPECT_EQ(Names(), "a c b");
    EXPECT_EQ(Current(), 2);
    // An item that was not selected is selected by the press.
    Drag(1, PointIn(0));
    EXPECT_EQ(Names(), "c a b");
    // Outside, and back to where it came from, nothing moves.
    for (const POINT to : {POINT{1000, 740}, PointIn(1)}) {
        Drag(1, to);
        EXPECT_EQ(Names(), "c a b");
        EXPECT_EQ(Current(), 1);
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        GetGUIThreadInfo(GetWindowThreadProcessId(Dialog(), nullptr), &info);
        EXPECT_EQ(info.hwndCapture, nullptr);
    }
    Close();
}

TEST_F(ListDialog, RestoresItsFile) {
    const std::string a = Picture("a"), c = Picture("c");
    WriteFileBytes(files.List(), c + "\r\n\r\n" + pictures.Path() + "gone\r\n" + a + "\n");
    WriteFileBytes(files.Settings(), "TransitionType = 3\r\nTransitionPause = 33\r\nTransitionDelay = 4\r\n");
    Open();
    EXPECT_EQ(Names(), "a c");
    EXPECT_EQ(Current(), 0);
    const ImageEntry entry = Entry(1);
    EXPECT_EQ(std::tuple(+entry.transition, +entry.pause, +entry.delay, +entry.flags),
              std::tuple(3, 33, 4, 0U));
    Close();

    // A file the host cannot read ends the opening there; the dialog can still be closed.
    WriteFileBytes(pictures.Path() + "bad", "no picture");
    WriteFileBytes(files.List(), c + "\r\n" + pictures.Path() + "bad\r\n" + c + "\r\n");
    Open();
    EXPECT_EQ(AnswerMessage(), "Error reading file");
    EXPECT_EQ(Names(), "c");
    Close();

    // With the switch off the file is emptied.
    WriteFileBytes(files.Settings(), "PreserveListContents = 0\r\n");
    Open();
    EXPECT_EQ(Names(), "c");
    Close();
    EXPECT_TRUE(FileExists(files.List().c_str()));
    EXPECT_EQ(ReadFileBytes(files.List()), "");
}

/// Where letters may have two bytes, the second that of "\\".
class CodePage932 : public ListDialog {
protected:
    void SetUp() override {
        if (GetACP() != 932) GTEST_SKIP() << "the copy of this program beside the manifest has it";
    }
};

TEST_F(CodePage932, TakesAndKeepsNamesOfTwoByteLetters) {
    const std::string folder = pictures.Path() + "\x95\\",
                      ambiguous = Picture("\xC3\xB1"); // a letter in UTF-8
    CreateDirectoryA(folder.c_str(), nullptr);
    std::string chosen, lines = ambiguous + "\r\n";
    for (const char* name : {"\x83\\", "\x8F\\.bmp"}) {
        chosen += std::string(1, '\0') + name;
        lines += Picture(std::string("\x95\\\\") + name) + "\r\n";
    }
    Open();
    AddBuffer(folder + chosen + std::string(2, '\0'));
    AddBuffer(folder + "\\" + chosen.substr(3) + std::string(2, '\0'));
    AddFiles({ambiguous});
    ASSERT_EQ(Count(), 4);
    DoubleClickItem(2);
    EXPECT_EQ(Caption(), "Transition override [ \x8F\\.bmp ]");
    Click(IDCANCEL);
    Click(LUMAFOLD_MAIN_REMOVE);
    Close();
    EXPECT_EQ(ReadFileBytes(files.List()), lines);
    Open();
    EXPECT_EQ(Count(), 3);
    EXPECT_EQ(Entry(0).label, folder + "\\\x8F\\.bmp");
    Close();
}

} // namespace
} // namespace lumafold::test
