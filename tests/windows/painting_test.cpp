// What the dialogs look like: pictures of each for people to look at, and measurements of what is exact.
#include "tests/windows/dialog_fixture.h"
#include "tests/windows/snapshot.h"

namespace lumafold::test {
namespace {

class Painting : public DialogTest {
protected:
    Painting() {
        const std::string wide =
            pictures.Add("a wide picture with a long name.bmp", PlainPicture(1000, 100, 0xFF0000));
        const std::string small = pictures.Add("small.bmp", PlainPicture(20, 10, 0x0000FF));
        const std::string busy = pictures.Add("photo.bmp", BusyPicture(320, 240, 7));
        WriteFileBytes(files.List(), busy + "\r\n" + small + "\r\n" + wide + "\r\n");
    }
    Snapshot Take(HWND over = nullptr) {
        RedrawWindow(Dialog(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        ui.Settle();
        return Snapshot(Dialog(), over);
    }
};

TEST_F(Painting, ShowsEveryDialog) {
    MoveMouse({1, 1});
    Open();
    AddFiles({pictures.Path() + "photo.bmp", pictures.Path() + "small.bmp"});
    Take().Save("main");
    COMBOBOXINFO combo{};
    combo.cbSize = sizeof(combo);
    ASSERT_TRUE(GetComboBoxInfo(Control(LUMAFOLD_MAIN_TRANSITION), &combo));
    Ask(LUMAFOLD_MAIN_TRANSITION, CB_SHOWDROPDOWN, TRUE);
    ui.Settle();
    Take(combo.hwndList).Save("main-transitions");
    Ask(LUMAFOLD_MAIN_TRANSITION, CB_SHOWDROPDOWN, FALSE);

    const HWND main = Dialog();
    const auto saveAndClose = [&](const char* name) {
        ASSERT_NE(Dialog(), main) << name;
        const Snapshot shown = Take();
        EXPECT_LT(shown.Width(), 1024);
        EXPECT_LT(shown.Height(), 740); // with a task bar
        shown.Save(name);
        Click(IDOK);
    };
    DoubleClickItem(0);
    saveAndClose("override");
    Click(LUMAFOLD_MAIN_ADVANCED);
    saveAndClose("advanced");
    Click(LUMAFOLD_MAIN_ABOUT);
    saveAndClose("about");
    host.helps = false;
    Click(LUMAFOLD_ID_HELP);
    Take().Save("message");
    EXPECT_NE(AnswerMessage(), "");
    Close();

    WriteFileBytes(files.List(), "");
    Open();
    Take().Save("main-empty");
    Close();
}

TEST_F(Painting, ScalesAndCentresThumbnails) {
    WriteFileBytes(files.Settings(), "ShowListLabels = 0\r\n");
    Open();
    ClickItem(2);
    const Snapshot shown = Take();
    const COLORREF frame = GetSysColor(COLOR_BTNSHADOW);
    const HWND list = Control(LUMAFOLD_MAIN_LIST);
    RECT item;
    Ask(LUMAFOLD_MAIN_LIST, LB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
    ASSERT_EQ(item.bottom - item.top, 100);
    const auto at = [&](LONG x, LONG y) { return shown.At(list, {x, y}); };
    // A small picture keeps its size, in the middle of what the margin leaves, with a frame round it.
    const LONG width = item.right - item.left;
    const LONG left = 6 + (width - 12 - 20) / 2, top = 100 + 6 + (88 - 10) / 2;
    EXPECT_EQ(shown.CountOf(0x0000FF), 200);
    EXPECT_EQ(at(left, top), 0x0000FFU);
    EXPECT_EQ(at(left + 19, top + 9), 0x0000FFU);
    EXPECT_EQ(at(left - 1, top - 1), frame);
    EXPECT_EQ(at(left + 20, top + 10), frame);
    EXPECT_EQ(at(left - 2, top), 0xFFFFFFU);
    // A wide one is scaled by whole percents, as the resampling rounds them.
    const LONG percent = (width - 12) * 100 / 1000;
    EXPECT_NEAR(shown.CountOf(0xFF0000), 10 * percent * percent, 10 * percent + percent + 2);
    // The selected item stands on the shadow colour.
    EXPECT_EQ(at(3, 203), frame);
    EXPECT_EQ(at(3, 103), 0xFFFFFFU);

    // Labels come and go with the setting.
    Click(LUMAFOLD_MAIN_ADVANCED);
    Click(106);
    Click(IDOK);
    const Snapshot labelled = Take();
    int dark = 0;
    for (LONG y = 180; y < 198; ++y) {
        for (LONG x = 4; x < 80; ++x) {
            EXPECT_EQ(at(x, y), 0xFFFFFFU);
            dark += labelled.At(list, {x, y}) == 0 ? 1 : 0;
        }
    }
    EXPECT_GT(dark, 40);
    Close();
}

TEST_F(Painting, PapersTheBackgroundAndColoursTheSwatch) {
    for (const bool plain : {false, true}) {
        WriteFileBytes(files.Settings(), std::string("TransitionMattcolour = 255\r\nSolidBackground = ") +
                                             (plain ? "1\r\n" : "0\r\n"));
        Open();
        const Snapshot shown = Take();
        // The strips along the border are bare.
        RECT client;
        GetClientRect(Dialog(), &client);
        const auto at = [&](LONG x, LONG y) { return shown.At(Dialog(), {x, y}); };
        int different = 0;
        for (LONG x = 0; x + 200 < client.right; ++x) {
            EXPECT_EQ(at(x, 2), at(x + 200, 2)) << x;
            different += at(x, 2) != GetSysColor(COLOR_BTNFACE) ? 1 : 0;
        }
        for (LONG y = 0; y + 250 < client.bottom; ++y)
            EXPECT_EQ(at(2, y), at(2, y + 250)) << y;
        EXPECT_EQ(different > 0, !plain);
        EXPECT_EQ(shown.At(Control(LUMAFOLD_MAIN_MATTE), {20, 10}), 0x0000FFU);
        Close();
    }
}

} // namespace
} // namespace lumafold::test
