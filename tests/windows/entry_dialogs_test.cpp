// What the list's entries get: the defaults of the main dialog, the override dialog, the Advanced dialog.
#include <windows.h>

#include <commctrl.h>

#include "settings/settings.h"
#include "tests/windows/dialog_fixture.h"
#include "ui/list_box.h"

namespace lumafold::test {
namespace {

constexpr int kNone = 14;

using Values = std::tuple<int, int, int, unsigned>; ///< transition, pause, delay, flags

class EntryDialogs : public DialogTest {
protected:
    Values Of(int item) const {
        const ImageEntry entry = Entry(item);
        return {entry.transition, entry.pause, entry.delay, entry.flags};
    }
};

TEST_F(EntryDialogs, DefaultsFollowTheUserButForOverriddenEntries) {
    KeepList({pictures.Add("a.bmp", PlainPicture(20, 10, 0xFF)),
              pictures.Add("b.bmp", PlainPicture(20, 10, 0xFF))});
    Open();
    ASSERT_EQ(Names(), "a.bmp b.bmp");
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
    Type(LUMAFOLD_OVERRIDE_DELAY, "5000");       // as typed
    Type(LUMAFOLD_OVERRIDE_PAUSE, "4000000000"); // up to what an entry holds
    Click(LUMAFOLD_ID_HELP);
    EXPECT_EQ(host.Texts(9), std::vector<std::string>{"LUMAFOLD.HTML#OVERRIDE"});
    Click(IDOK);
    EXPECT_EQ(Caption(), "Lumafold");
    EXPECT_EQ(Of(1), Values(3, INT32_MAX, 5000, kEntryOverride));

    DoubleClickItem(0);
    Choose(LUMAFOLD_OVERRIDE_TRANSITION, 5);
    Type(LUMAFOLD_OVERRIDE_DELAY, "1");
    Click(IDCANCEL);
    EXPECT_EQ(Of(0), Values(kNone, 80, 8, 0));

    Type(LUMAFOLD_MAIN_DELAY, "9");
    Type(LUMAFOLD_MAIN_PAUSE, "90");
    Choose(LUMAFOLD_MAIN_TRANSITION, 20);
    EXPECT_EQ(Of(0), Values(20, 90, 9, 0));
    EXPECT_EQ(Of(1), Values(3, INT32_MAX, 5000, kEntryOverride));

    // Without a change in the box, coming back to it is enough.
    ImageEntry entry = Entry(0);
    entry.delay = 1;
    WriteEntry(Control(LUMAFOLD_MAIN_LIST), 0, entry);
    SendMessageA(Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(LUMAFOLD_MAIN_DELAY)), TRUE);
    ui.Settle();
    EXPECT_EQ(Of(0), Values(20, 90, 9, 0));
    Close();
}

class AdvancedDialog : public EntryDialogs {
protected:
    static constexpr PixelValue kChosen = 0x0A0B0C;

    static std::uint32_t Changed(const SettingDescriptor& row) {
        if (row.kind == SettingKind::Switch) return 1 - row.defaultValue;
        if (row.kind == SettingKind::Colour) return kChosen;
        return row.kind == SettingKind::Number && row.controlId % 2 == 0 ? row.minimum : row.maximum;
    }
    void ExpectShown(const SettingDescriptor& row) const {
        const int id = row.controlId;
        ASSERT_NE(Control(id), nullptr);
        char label[100] = "";
        GetWindowTextA(row.kind == SettingKind::Switch ? Control(id) : GetWindow(Control(id), GW_HWNDPREV),
                       label, sizeof(label));
        EXPECT_STREQ(label, row.label);
        if (row.kind == SettingKind::Switch) {
            EXPECT_EQ(Checked(id), row.defaultValue != 0);
        } else if (row.kind == SettingKind::Choice) {
            EXPECT_EQ(Ask(id, CB_GETCOUNT), static_cast<LRESULT>(row.maximum) + 1);
            EXPECT_EQ(Chosen(id), static_cast<int>(row.defaultValue));
        } else if (row.kind == SettingKind::Number) {
            const std::string low = std::to_string(row.minimum), high = std::to_string(row.maximum);
            EXPECT_EQ(Text(id), high);
            EXPECT_EQ(Text(id + LUMAFOLD_UPDOWN), low + "," + high + "," + std::to_string(row.start));
            DWORD range[2] = {};
            Ask(id + LUMAFOLD_UPDOWN, UDM_GETRANGE32, reinterpret_cast<WPARAM>(&range[0]),
                reinterpret_cast<LPARAM>(&range[1]));
            EXPECT_EQ(std::tuple(range[0], range[1]), std::tuple(row.minimum, row.maximum));
        }
    }
    void Change(const SettingDescriptor& row) {
        if (row.kind == SettingKind::Number) {
            Type(row.controlId, Changed(row) == row.minimum ? "0" : "500000");
        } else if (row.kind == SettingKind::Choice) {
            Choose(row.controlId, static_cast<int>(Changed(row)));
        } else {
            Click(row.controlId);
        }
        if (row.kind != SettingKind::Colour) return;
        EXPECT_EQ(Text(row.controlId), "12,11,10");
        EXPECT_EQ(+host.colour.before, row.defaultValue);
    }
};

TEST_F(AdvancedDialog, ShowsEverySettingInItsRangeAndStoresOnlyOnOk) {
    std::string text;
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.kind == SettingKind::Number) text += std::string(row.key) + " = 100000\r\n";
    }
    WriteFileBytes(files.Settings(), text);
    host.chosen = kChosen;
    Open();
    const HWND main = Dialog();
    for (const int button : {IDCANCEL, IDOK}) {
        Click(LUMAFOLD_MAIN_ADVANCED);
        ASSERT_NE(Dialog(), main);
        for (const SettingDescriptor& row : SettingDescriptors()) {
            if (row.dialog != SettingDialog::Advanced) continue;
            SCOPED_TRACE(row.key);
            ASSERT_NO_FATAL_FAILURE(ExpectShown(row));
            Change(row);
        }
        Click(LUMAFOLD_ID_HELP);
        Click(button);
        ASSERT_EQ(Dialog(), main);
    }
    EXPECT_EQ(host.colour.owner, static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(main)));
    EXPECT_EQ(host.Texts(9), (std::vector<std::string>{"LUMAFOLD.HTML#ADVANCED", "LUMAFOLD.HTML#ADVANCED"}));
    Close();
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.dialog != SettingDialog::Advanced) continue;
        EXPECT_EQ(files.Setting(row.key), Changed(row)) << row.key;
    }
}

} // namespace
} // namespace lumafold::test
