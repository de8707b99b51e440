// What the dialogs look like, measured where it is exact.
#include "image/resample.h"
#include "platform/gdi_win32.h"
#include "tests/windows/dialog_fixture.h"
#include "tests/windows/snapshot.h"
#include "ui/thumbnail.h"

namespace lumafold::test {
namespace {

class Painting : public DialogTest {
protected:
    Painting() {
        Palette table{};
        table[99] = {255, 0, 0};
        OwnedDib indexed = PictureOf(
            20, 10, 8, [](int, int) { return 99U; }, &table);
        indexed->biClrUsed = 16; // which says nothing about its pixels
        KeepList({pictures.Add("a wide picture with a long name.bmp", PlainPicture(1000, 100, 0xFF0000)),
                  pictures.Add("small.bmp", indexed), pictures.Add("photo.bmp", BusyPicture(320, 240, 7))});
    }
    Snapshot Take() {
        RedrawWindow(Dialog(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        ui.Settle();
        return Snapshot(Dialog());
    }
};

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

TEST_F(Painting, AveragesColoursOfPalettesAndFollowsTheScrollBar) {
    // Two entries far apart in the table alternate: their colours average to one, their indices to a third
    // entry.
    Palette palette;
    DibGetPalette(*NoisePicture(1, 1, 8, 5), palette);
    const OwnedDib striped = PictureOf(
        600, 300, 8, [](int x, int) { return x % 2 == 0 ? 10 : 250; }, &palette);
    const Rgb a = palette[10], b = palette[250];
    const std::string path = pictures.Add("striped.bmp", striped);
    KeepList(std::vector(5, path));
    WriteFileBytes(files.Settings(), "ShowListLabels = 0\r\n");
    Open();
    const HWND list = Control(LUMAFOLD_MAIN_LIST);
    for (const int items : {5, 4, 5}) { // of which four need no scroll bar
        ClickItem(3);                   // the ones before it are not told to draw themselves
        if (items < Count()) Click(LUMAFOLD_MAIN_REMOVE);
        if (items > Count()) AddFiles({path});
        const Snapshot shown(Dialog());
        RECT client;
        GetClientRect(list, &client);
        LONG left = 0, right = client.right - 1;
        while (left < right && shown.At(list, {left, 150}) == 0xFFFFFF)
            ++left;
        while (left < right && shown.At(list, {right, 150}) == 0xFFFFFF)
            --right;
        EXPECT_LE(std::abs(left - (client.right - 1 - right)), 1) << "not amid its item of " << items;
        const Rgb seen = RgbOf(shown.At(list, {(left + right) / 2, 150}));
        EXPECT_NEAR(seen.red, (a.red + b.red) / 2, 70);
        EXPECT_NEAR(seen.green, (a.green + b.green) / 2, 70);
        EXPECT_NEAR(seen.blue, (a.blue + b.blue) / 2, 70);
    }
    Close();
}

TEST_F(Painting, PapersTheBackgroundAndColoursTheSwatch) {
    for (const bool plain : {false, true}) {
        WriteFileBytes(
            files.Settings(),
            std::string("TransitionPalette = 6\r\nTransitionMattcolour = 13421821\r\nSolidBackground = ") +
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
        // A control that is painted into memory first is cleared no less: its context belongs to no window.
        const OwnedContext memory(CreateCompatibleDC(nullptr));
        EXPECT_NE(SendMessageA(Dialog(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(memory.Get()),
                               reinterpret_cast<LPARAM>(Control(LUMAFOLD_MAIN_DITHER))),
                  reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH)));
        // The face is the colour itself; its corner tells what a fixed palette makes of it, once one is in
        // use.
        const auto swatch = [&](LONG x, LONG y) { return Take().At(Control(LUMAFOLD_MAIN_MATTE), {x, y}); };
        for (const auto& [box, corner] : {std::pair(0, 0xCCCCFDU), // one is computed
                                          {LUMAFOLD_MAIN_TRUE_COLOUR, 0xCCCCFDU},
                                          {LUMAFOLD_MAIN_CUSTOM_PALETTE, 0xCCCCFDU}, // true colour alone
                                          {LUMAFOLD_MAIN_TRUE_COLOUR, 0xAAD8FFU}}) {
            if (box != 0) Click(box);
            EXPECT_EQ(swatch(20, 10), 0xCCCCFDU);
            EXPECT_EQ(swatch(6, 6), corner) << "after a click on " << box;
        }
        Choose(LUMAFOLD_MAIN_PALETTE, 8);
        EXPECT_EQ(swatch(6, 6), 0xD8D8D8U) << "which is not the nearest, but what frames get";
        Close();
    }
}

TEST(Thumbnail, ShowsWhatCannotBeScaled) {
    const OwnedContext context(CreateCompatibleDC(nullptr));
    const OwnedGdi<HBITMAP> paper(CreateBitmap(212, 100, 1, 32, nullptr));
    const SelectedGdi selected(context.Get(), paper.Get());
    DRAWITEMSTRUCT item{};
    item.hDC = context.Get();
    item.rcItem = {0, 0, 212, 100};
    const auto at = [&](int x, int y) { return GetPixel(context.Get(), x, y); };
    const COLORREF frame = GetSysColor(COLOR_BTNSHADOW);
    // At two percent nothing is left of one pixel, but the frame round it.
    DrawThumbnail(item, PlainPicture(1, 4000, 0xFF).Get());
    EXPECT_EQ(std::tuple(at(105, 9), at(106, 90), at(105, 91)), std::tuple(frame, frame, 0U));
    // Without memory for a smaller copy the whole one begins at the corner of the room and ends with it;
    // without memory for any, nothing is drawn.
    OwnedDib large = NoisePicture(300, 200, 8, 1);
    large->biClrUsed = 2; // which says nothing about its pixels
    const OwnedDib colours = DibToTrueColour(*large);
    for (const int failing : {1, 4, 5}) {
        allocation_hooks::FailNth(failing);
        DrawThumbnail(item, large.Get());
        EXPECT_TRUE(allocation_hooks::HasFailed());
        allocation_hooks::FailNth(0);
        const bool any = failing > 1; // the first three are for the whole copy
        for (const POINT place : {POINT{0, 0}, POINT{199, 87}})
            EXPECT_EQ(at(6 + place.x, 6 + place.y), any ? DibGetPixel(*colours, place.x, place.y) : 0U);
        const COLORREF around = any ? frame : 0U;
        EXPECT_EQ(std::tuple(at(206, 50), at(50, 94), at(207, 95)), std::tuple(around, around, 0U));
        PatBlt(context.Get(), 0, 0, 212, 100, BLACKNESS);
    }
}

} // namespace
} // namespace lumafold::test
