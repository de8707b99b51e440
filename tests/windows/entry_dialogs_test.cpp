// What the list's entries get: the defaults of the main dialog, the override dialog, the Advanced dialog.
#include <windows.h>

#include <commctrl.h>

#include <cstring>

#include "settings/settings.h"
#include "tests/windows/dialog_fixture.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14, kSpikeBlur = 149, kSpiralStep = 133;

using Values = std::tuple<int, int, int, unsigned>; ///< transition, pause, delay, flags

class EntryDialogs : public DialogTest {
protected:
    void OpenWithTwo() {
        std::string lines;
        for (const char* name : {"b.bmp", "a.bmp"})
            lines += pictures.Add(name, PlainPicture(20, 10, 0xFF)) + "\r\n";
        WriteFileBytes(files.List(), lines);
        Open();
        ASSERT_EQ(Names(), "a.bmp b.bmp");
    }
    Values Of(int item) const {
        const ImageEntry entry = Entry(item);
        return {entry.transition, entry.pause, entry.delay, entry.flags};
    }
};

TEST_F(EntryDialogs, DefaultsFollowTheUserButForOverriddenEntries) {
    OpenWithTwo();
    EXPECT_EQ(Of(0), Values(0, 100, 5, 0));
    Type(LUMAFOLD_MAIN_DELAY, "8");
    Type(LUMAFOLD_MAIN_PAUSE, "80");
    Choose(LUMAFOLD_MAIN_TRANSITION, kNone);
    for (const int item : {0, 1})
        EXPECT_EQ(Of(item), Values(kNone, 80, 8, 0));

    DoubleClickItem(1);
    EXPECT_EQ(Caption(), "Transition override [ b.bmp ]");
    EXPECT_EQ(Chosen(LUMAFOLD_OVERRIDE_TRANSITION), kNone);
    EXPECT_EQ(Ask(LUMAFOLD_OVERRIDE_TRANSITION, CB_GETCOUNT), 33);
    EXPECT_EQ(Text(LUMAFOLD_OVERRIDE_DELAY), "8");
    EXPECT_EQ(Text(LUMAFOLD_OVERRIDE_PAUSE), "80");
    EXPECT_EQ(Text(LUMAFOLD_OVERRIDE_DELAY + LUMAFOLD_UPDOWN), "1,1000,100");
    EXPECT_EQ(Text(LUMAFOLD_OVERRIDE_PAUSE + LUMAFOLD_UPDOWN), "0,1000,100");
    Choose(LUMAFOLD_OVERRIDE_TRANSITION, 3);
    Type(LUMAFOLD_OVERRIDE_DELAY, "5000"); // as typed
    Type(LUMAFOLD_OVERRIDE_PAUSE, "0");
    Click(LUMAFOLD_ID_HELP);
    EXPECT_EQ(host.Texts(9), std::vector<std::string>{"LUMAFOLD.HTML#OVERRIDE"});
    Click(IDOK);
    EXPECT_EQ(Caption(), "Lumafold");
    EXPECT_EQ(Of(1), Values(3, 0, 5000, kEntryOverride));

    DoubleClickItem(0);
    Choose(LUMAFOLD_OVERRIDE_TRANSITION, 5);
    Type(LUMAFOLD_OVERRIDE_DELAY, "1");
    Click(IDCANCEL);
    EXPECT_EQ(Of(0), Values(kNone, 80, 8, 0));

    Type(LUMAFOLD_MAIN_DELAY, "9");
    Type(LUMAFOLD_MAIN_PAUSE, "90");
    Choose(LUMAFOLD_MAIN_TRANSITION, 20);
    EXPECT_EQ(Of(0), Values(20, 90, 9, 0));
    EXPECT_EQ(Of(1), Values(3, 0, 5000, kEntryOverride));

    // Without a change in the box, coming back to it is enough.
    ImageEntry entry = Entry(0);
    entry.delay = 1;
    const auto block = reinterpret_cast<HGLOBAL>(Ask(LUMAFOLD_MAIN_LIST, LB_GETITEMDATA, 0));
    std::memcpy(GlobalLock(block), &entry, sizeof(entry));
    GlobalUnlock(block);
    SendMessageA(Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(LUMAFOLD_MAIN_DELAY)), TRUE);
    ui.Settle();
    EXPECT_EQ(Of(0), Values(20, 90, 9, 0));
    Close();
}

TEST_F(EntryDialogs, AdvancedShowsEverySettingInItsRange) {
    std::string text;
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.kind == SettingKind::Number) text += std::string(row.key) + " = 100000\r\n";
    }
    WriteFileBytes(files.Settings(), text);
    Open();
    Click(LUMAFOLD_MAIN_ADVANCED);
    ASSERT_NE(Caption(), "Lumafold");
    const auto label = [&](const SettingDescriptor& row) {
        if (row.kind == SettingKind::Switch) return Text(row.controlId);
        char words[100] = "";
        GetWindowTextA(GetWindow(Control(row.controlId), GW_HWNDPREV), words, sizeof(words));
        return std::string(words);
    };
    int controls = 0;
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.dialog != SettingDialog::Advanced) continue;
        SCOPED_TRACE(row.key);
        ++controls;
        ASSERT_NE(Control(row.controlId), nullptr);
        EXPECT_EQ(label(row), row.label);
        if (row.kind == SettingKind::Switch) {
            EXPECT_EQ(Checked(row.controlId), row.defaultValue != 0);
        }
        if (row.kind == SettingKind::Choice) {
            EXPECT_EQ(Ask(row.controlId, CB_GETCOUNT), static_cast<LRESULT>(row.maximum) + 1);
            EXPECT_EQ(Chosen(row.controlId), static_cast<int>(row.defaultValue));
        }
        if (row.kind != SettingKind::Number) continue;
        EXPECT_EQ(Text(row.controlId), std::to_string(row.maximum));
        EXPECT_EQ(Text(row.controlId + LUMAFOLD_UPDOWN), std::to_string(row.minimum) + "," +
                                                             std::to_string(row.maximum) + "," +
                                                             std::to_string(row.start));
        DWORD low = 0, high = 0;
        Ask(row.controlId + LUMAFOLD_UPDOWN, UDM_GETRANGE32, reinterpret_cast<WPARAM>(&low),
            reinterpret_cast<LPARAM>(&high));
        EXPECT_EQ(std::tuple(low, high), std::tuple(row.minimum, row.maximum));
        Type(row.controlId, "0");
    }
    EXPECT_EQ(controls, 55);
    Click(IDOK);
    Close();
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.dialog != SettingDialog::Advanced) continue;
        EXPECT_EQ(files.Setting(row.key), row.kind == SettingKind::Number ? row.minimum : row.defaultValue)
            << row.key;
    }
}

TEST_F(EntryDialogs, AdvancedStoresOnlyOnOk) {
    constexpr int kComment = 100, kSilentMovieBack = 139, kSparkleColour = 144;
    Open();
    const HWND main = Dialog();
    for (const int button : {IDCANCEL, IDOK}) {
        Click(LUMAFOLD_MAIN_ADVANCED);
        EXPECT_EQ(Text(kSilentMovieBack), "128,128,128");
        EXPECT_TRUE(Checked(kComment));
        EXPECT_EQ(Text(kSpikeBlur), "25");
        Type(kSpikeBlur, "5000");
        Choose(kSpiralStep, 16);
        Click(kComment);
        host.chosen = 0x0A0B0C;
        Click(kSilentMovieBack);
        EXPECT_EQ(Text(kSilentMovieBack), "12,11,10");
        EXPECT_EQ(+host.colour.before, 0x808080U);
        EXPECT_EQ(host.colour.owner, static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(main)));
        host.chosen.reset();
        Click(kSparkleColour);
        EXPECT_EQ(Text(kSparkleColour), "204,51,255");
        EXPECT_TRUE(Enabled(IDOK));
        Click(LUMAFOLD_ID_HELP);
        Click(button);
        ASSERT_EQ(Dialog(), main);
    }
    EXPECT_EQ(host.Texts(9), (std::vector<std::string>{"LUMAFOLD.HTML#ADVANCED", "LUMAFOLD.HTML#ADVANCED"}));
    EXPECT_EQ(host.Count(11), 4);
    Close();
    EXPECT_EQ(files.Setting("TransitionSpikeRadius"), 400);
    EXPECT_EQ(files.Setting("TransitionSpiralStep"), 16);
    EXPECT_EQ(files.Setting("AddDescriptiveCommentBlock"), 0);
    EXPECT_EQ(files.Setting("TransitionSilentMovieBackground"), 0x0A0B0C);
    EXPECT_EQ(files.Setting("TransitionSparkleColor"), 0xFF33CC);
}

} // namespace
} // namespace lumafold::test
