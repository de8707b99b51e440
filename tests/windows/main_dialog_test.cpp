// The main dialog: opening for every kind of host, what its controls do, and what it writes when it closes.
#include "lumafold_version.h"
#include "platform/files.h"
#include "settings/settings.h"
#include "tests/windows/dialog_fixture.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

class MainDialog : public DialogTest {};

TEST_F(MainDialog, OpensAsTheHostsCapabilitiesAllow) {
    for (const std::uint32_t flags : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(testing::Message() << "capabilities " << flags);
        const bool compresses = (flags & 1) != 0, trueColours = (flags & 2) != 0;
        WriteFileBytes(files.Settings(), "TransitionTruecolour = 1\r\nTransitionDelay = 5000\r\n"
                                         "TransitionPause = 0\r\nTransitionCustompalette = 0\r\n");
        host.context.capabilityFlags = flags;
        Open();
        EXPECT_EQ(Caption(), "Lumafold");
        EXPECT_EQ(Enabled(LUMAFOLD_MAIN_TRUE_COLOUR), trueColours);
        EXPECT_EQ(Checked(LUMAFOLD_MAIN_TRUE_COLOUR), trueColours);
        EXPECT_EQ(Enabled(LUMAFOLD_MAIN_SUPERCOMPRESS), compresses);
        EXPECT_EQ(Checked(LUMAFOLD_MAIN_SUPERCOMPRESS), compresses);
        for (const int edit : {LUMAFOLD_MAIN_DELAY, LUMAFOLD_MAIN_PAUSE}) {
            EXPECT_EQ(Text(edit + LUMAFOLD_UPDOWN), compresses ? "1,1000,10" : "1,10000,100");
        }
        EXPECT_EQ(Text(LUMAFOLD_MAIN_DELAY), compresses ? "1000" : "5000");
        EXPECT_EQ(Text(LUMAFOLD_MAIN_PAUSE), "1");
        EXPECT_TRUE(Enabled(LUMAFOLD_MAIN_PALETTE));
        Close();
        EXPECT_EQ(files.Setting("TransitionTruecolour"), trueColours ? 1 : 0);
        EXPECT_EQ(files.Setting("Supercompress"), compresses ? 1 : 0);
        Reload();
    }
    EXPECT_TRUE(host.commands.empty());
}

TEST_F(MainDialog, StartsFromDefaultsAndWritesEverySetting) {
    RemoveFolder(files.Settings());
    Open();
    for (const int button : {IDOK, LUMAFOLD_MAIN_TEST, LUMAFOLD_MAIN_REMOVE, LUMAFOLD_MAIN_PASTE}) {
        EXPECT_FALSE(Enabled(button)) << button;
    }
    ASSERT_EQ(Ask(LUMAFOLD_MAIN_TRANSITION, CB_GETCOUNT), kTransitionCount);
    EXPECT_EQ(Ask(LUMAFOLD_MAIN_PALETTE, CB_GETCOUNT), 9);
    EXPECT_EQ(Text(LUMAFOLD_MAIN_TRANSITION), "Alpha horizontal bar (opaque)");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_PALETTE), "256-color orthogonal");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_DELAY), "5");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_PAUSE), "100");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_MATTE), "204,204,204");
    EXPECT_TRUE(Checked(LUMAFOLD_MAIN_CUSTOM_PALETTE));
    EXPECT_FALSE(Enabled(LUMAFOLD_MAIN_PALETTE));
    Click(LUMAFOLD_MAIN_CUSTOM_PALETTE);
    EXPECT_TRUE(Enabled(LUMAFOLD_MAIN_PALETTE));
    Close();

    EXPECT_EQ(SettingDescriptors().size(), 67U);
    for (const SettingDescriptor& row : SettingDescriptors())
        EXPECT_EQ(files.Setting(row.key), row.defaultValue) << row.key;
}

TEST_F(MainDialog, KeepsSettingsOnEveryWayOut) {
    Open();
    for (const int box : {LUMAFOLD_MAIN_CUSTOM_PALETTE, LUMAFOLD_MAIN_DITHER, LUMAFOLD_MAIN_TRUE_COLOUR,
                          LUMAFOLD_MAIN_SUPERCOMPRESS})
        Click(box);
    Choose(LUMAFOLD_MAIN_PALETTE, 2);
    Choose(LUMAFOLD_MAIN_TRANSITION, 22);
    Type(LUMAFOLD_MAIN_DELAY, "70000");
    Type(LUMAFOLD_MAIN_PAUSE, "0");
    host.chosen = 0x030201;
    Click(LUMAFOLD_MAIN_MATTE);
    EXPECT_EQ(Text(LUMAFOLD_MAIN_MATTE), "1,2,3");
    EXPECT_EQ(std::tuple(+host.colour.size, +host.colour.version, +host.colour.twentyFour,
                         +host.colour.before, +host.colour.colour),
              std::tuple(28U, 0x201U, 24U, 0xCCCCCCU, 0xCCCCCCU));
    EXPECT_EQ(host.colour.owner, static_cast<WindowHandle>(reinterpret_cast<std::uintptr_t>(Dialog())));
    EXPECT_TRUE(+host.colour.customColours != nullptr);
    host.chosen.reset(); // cancelled
    Click(LUMAFOLD_MAIN_MATTE);
    EXPECT_EQ(Text(LUMAFOLD_MAIN_MATTE), "1,2,3");
    Close();
    // Cancelled, only what took effect at once is kept.
    const std::pair<const char*, int> saved[] = {{"TransitionMattcolour", 0x030201},
                                                 {"TransitionPalette", 2},
                                                 {"TransitionType", 0},
                                                 {"TransitionDelay", 5},
                                                 {"TransitionPause", 100},
                                                 {"TransitionDither", 1},
                                                 {"TransitionCustompalette", 1},
                                                 {"Supercompress", 1}};
    for (const auto& [key, value] : saved)
        EXPECT_EQ(files.Setting(key), value) << key;

    // The next opening shows what the file says, also after a change by hand.
    WriteFileBytes(files.Settings(), "TransitionDelay = 12\r\nTransitionType = 22\r\n");
    Open();
    EXPECT_EQ(Text(LUMAFOLD_MAIN_DELAY), "12");
    EXPECT_EQ(Chosen(LUMAFOLD_MAIN_TRANSITION), 22);
    EXPECT_EQ(Text(LUMAFOLD_MAIN_MATTE), "1,2,3");
    PostMessageA(Dialog(), WM_CLOSE, 0, 0);
    ui.Finish();
    EXPECT_EQ(files.Setting("TransitionDelay"), 12);
}

TEST_F(MainDialog, ShiftStartsFromWhatIsInForceAndForgetsTheList) {
    KeepList({pictures.Add("a.bmp", PlainPicture(7, 5, 0xFF))});
    WriteFileBytes(files.Settings(), "TransitionDelay = 12\r\nTransitionMattcolour = 255\r\n");
    Open(Shift::Down);
    EXPECT_EQ(Text(LUMAFOLD_MAIN_DELAY), "5");
    EXPECT_EQ(Text(LUMAFOLD_MAIN_MATTE), "204,204,204");
    EXPECT_EQ(Count(), 0);
    Close();
    EXPECT_EQ(files.Setting("TransitionDelay"), 5);
    EXPECT_TRUE(FileExists(files.List().c_str()));
    EXPECT_EQ(ReadFileBytes(files.List()), "");
    EXPECT_EQ(host.Count(8), 0);
}

TEST_F(MainDialog, WithoutACallbackSaysSoAndGoes) {
    KeepList({pictures.Add("a.bmp", PlainPicture(7, 5, 0xFF))});
    host.context.callback = nullptr;
    Open();
    EXPECT_EQ(AnswerMessage(), "Internal error");
    ui.Finish();
    EXPECT_EQ(Result(), 1);
}

TEST_F(MainDialog, ShowsHelpAndTheAboutBox) {
    Open();
    Click(LUMAFOLD_ID_HELP);
    host.helps = false;
    Click(LUMAFOLD_ID_HELP);
    EXPECT_EQ(AnswerMessage(), "There has been an error displaying the Help document.");
    const HWND main = Dialog();
    Click(LUMAFOLD_MAIN_ABOUT);
    ASSERT_NE(Dialog(), main);
    EXPECT_EQ(GetWindow(Dialog(), GW_OWNER), main);
    EXPECT_NE(FindWindowExA(Dialog(), nullptr, "Static", "Version " LUMAFOLD_VERSION), nullptr);
    host.helps = true;
    Click(LUMAFOLD_ID_HELP);
    Click(IDOK);
    Close();
    EXPECT_EQ(host.Texts(9),
              (std::vector<std::string>{"LUMAFOLD.HTML", "LUMAFOLD.HTML", "LUMAFOLD.HTML#ABOUT"}));
}

} // namespace
} // namespace lumafold::test
