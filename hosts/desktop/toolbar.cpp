#include "hosts/desktop/toolbar.h"

#include <algorithm>

#include "hosts/desktop/icon_painter.h"
#include "hosts/desktop/ids.h"
#include "hosts/desktop/painting.h"

namespace lumafold {
namespace {

constexpr int kIconSize = 24;
constexpr std::uint32_t kInk = 0x3A4150, kBlue = 0x2F6FDB, kAmber = 0xF09A1A, kGreen = 0x2E9E5B,
                        kPaper = 0xFFFFFF, kFolder = 0xF2B84B, kFolderBack = 0xC98F22, kSteel = 0x8A93A5;

void DrawRun(IconPainter& icon) {
    icon.Polygon({{3, 6}, {12, 3}, {12, 18}, {3, 21}}, kAmber);
    icon.Polygon({{12, 3}, {21, 6}, {21, 21}, {12, 18}}, kBlue);
    icon.Polygon({{12, 3}, {16, 4.4}, {16, 19.4}, {12, 18}}, 0x5C90E8);
    icon.Polygon({{8, 4.4}, {12, 3}, {12, 18}, {8, 19.4}}, 0xFFC15C);
}
void DrawOpen(IconPainter& icon) {
    icon.Polygon({{2, 5}, {9, 5}, {11, 7}, {20, 7}, {20, 20}, {2, 20}}, kFolderBack);
    icon.Box(5, 9, 19, 16, kPaper);
    icon.Polygon({{5, 11}, {23, 11}, {20, 20}, {2, 20}}, kFolder);
}
void DrawSave(IconPainter& icon) {
    icon.Polygon({{3, 3}, {18, 3}, {21, 6}, {21, 21}, {3, 21}}, kBlue);
    icon.Box(7, 3, 17, 9, kPaper);
    icon.Box(13, 4, 15.5, 8, kBlue);
    icon.Box(6, 12, 18, 21, kPaper);
    icon.Box(8, 14, 16, 15, kSteel);
    icon.Box(8, 17, 16, 18, kSteel);
}
void DrawCopy(IconPainter& icon) {
    icon.Box(3, 3, 15, 17, kSteel);
    icon.Box(4, 4, 14, 16, kPaper);
    icon.Box(8, 7, 21, 22, kBlue);
    icon.Box(9, 8, 20, 21, kPaper);
    icon.Polygon({{10, 19}, {13.5, 13}, {16, 17}, {17, 15.5}, {19, 19}}, kGreen);
    icon.Disc(17.2, 11.6, 1.5, kAmber);
}
void DrawFirst(IconPainter& icon) {
    icon.Box(5, 5, 7.5, 19, kInk);
    icon.Polygon({{19, 5}, {19, 19}, {8.5, 12}}, kInk);
}
void DrawPrevious(IconPainter& icon) {
    icon.Polygon({{14, 5}, {14, 19}, {4, 12}}, kInk);
    icon.Box(16, 5, 19, 19, kInk);
}
void DrawPlay(IconPainter& icon) { icon.Polygon({{6, 3.5}, {20.5, 12}, {6, 20.5}}, kGreen); }
void DrawPause(IconPainter& icon) {
    icon.Box(5, 4, 10, 20, kAmber);
    icon.Box(14, 4, 19, 20, kAmber);
}
void DrawNext(IconPainter& icon) {
    icon.Box(5, 5, 8, 19, kInk);
    icon.Polygon({{10, 5}, {20, 12}, {10, 19}}, kInk);
}
void DrawLast(IconPainter& icon) {
    icon.Polygon({{5, 5}, {15.5, 12}, {5, 19}}, kInk);
    icon.Box(16.5, 5, 19, 19, kInk);
}
void DrawGlass(IconPainter& icon) {
    icon.Line({15, 15}, {21.5, 21.5}, 3.4, kInk);
    icon.Disc(10, 10, 7.6, kInk);
    icon.Disc(10, 10, 5.8, 0xEAF2FF);
}
void DrawZoomOut(IconPainter& icon) {
    DrawGlass(icon);
    icon.Box(6.5, 9, 13.5, 11, kBlue);
}
void DrawZoomIn(IconPainter& icon) {
    DrawZoomOut(icon);
    icon.Box(9, 6.5, 11, 13.5, kBlue);
}
void DrawFit(IconPainter& icon) {
    icon.Box(7, 8, 17, 16, kBlue);
    icon.Box(8, 9, 16, 15, 0xDCE8FC);
    for (const double x : {3.0, 21.0}) {
        for (const double y : {4.0, 20.0}) {
            const double inX = x < 12 ? 1 : -1, inY = y < 12 ? 1 : -1;
            icon.Polygon({{x, y}, {x + 5 * inX, y}, {x + 5 * inX, y + 2 * inY}, {x, y + 2 * inY}}, kInk);
            icon.Polygon({{x, y}, {x + 2 * inX, y}, {x + 2 * inX, y + 5 * inY}, {x, y + 5 * inY}}, kInk);
        }
    }
}
void DrawActual(IconPainter& icon) {
    icon.Box(2, 5, 22, 19, kInk);
    icon.Box(3, 6, 21, 18, kPaper);
    icon.Polygon({{5.5, 9.4}, {8, 8}, {8, 16}, {6.2, 16}, {6.2, 10.4}, {5.5, 10.8}}, kInk);
    icon.Polygon({{15.5, 9.4}, {18, 8}, {18, 16}, {16.2, 16}, {16.2, 10.4}, {15.5, 10.8}}, kInk);
    icon.Disc(12, 10.3, 1.2, kInk);
    icon.Disc(12, 14.2, 1.2, kInk);
}
void DrawCheckerboard(IconPainter& icon) {
    icon.Box(3, 3, 21, 21, kInk);
    for (int square = 0; square < 16; ++square) {
        const int column = square % 4, row = square / 4;
        icon.Box(4 + 4 * column, 4 + 4 * row, 8 + 4 * column, 8 + 4 * row,
                 (column + row) % 2 != 0 ? 0xA9B2C2 : kPaper);
    }
}
void DrawHelp(IconPainter& icon) {
    icon.Disc(12, 12, 9.6, kBlue);
    icon.Polygon({{8, 9.6},
                  {8.4, 7.6},
                  {10, 6},
                  {12.2, 5.6},
                  {14.6, 6.2},
                  {16, 8},
                  {15.8, 10.2},
                  {14.2, 11.8},
                  {13.2, 12.8},
                  {13, 14.4},
                  {10.8, 14.4},
                  {11, 12.2},
                  {12.4, 10.8},
                  {13.6, 9.6},
                  {13.4, 8.2},
                  {12.2, 7.6},
                  {10.8, 8},
                  {10.2, 9.6}},
                 kPaper);
    icon.Disc(11.9, 17.1, 1.4, kPaper);
}

struct Button {
    int command; ///< 0 for a gap
    void (*draw)(IconPainter&);
    const char* tip;
    BYTE style;
};
constexpr Button kButtons[] = {
    {HOST_RUN_PLUGIN, DrawRun, "Make an animation (F5)", BTNS_SHOWTEXT},
    {},
    {HOST_OPEN, DrawOpen, "Open an animation (Ctrl+O)", 0},
    {HOST_SAVE, DrawSave, "Save the animation (Ctrl+S)", 0},
    {HOST_COPY, DrawCopy, "Copy this frame (Ctrl+C)", 0},
    {},
    {HOST_FIRST, DrawFirst, "First frame (Home)", 0},
    {HOST_PREVIOUS, DrawPrevious, "One frame back (Left)", 0},
    {HOST_PLAY, DrawPlay, "Play or pause (Space)", 0},
    {HOST_NEXT, DrawNext, "One frame on (Right)", 0},
    {HOST_LAST, DrawLast, "Last frame (End)", 0},
    {},
    {HOST_ZOOM_OUT, DrawZoomOut, "Smaller (-)", 0},
    {HOST_ZOOM_IN, DrawZoomIn, "Larger (+)", 0},
    {HOST_ZOOM_ACTUAL, DrawActual, "Actual size (1)", 0},
    {HOST_ZOOM_FIT, DrawFit, "Fit the window (0)", BTNS_CHECK},
    {HOST_CHECKERBOARD, DrawCheckerboard, "Checkerboard behind transparent pixels", BTNS_CHECK},
    {},
    {HOST_MANUAL, DrawHelp, "Manual (F1)", 0},
};

std::uint32_t FaceColour() {
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    return static_cast<std::uint32_t>(GetRValue(face) << 16 | GetGValue(face) << 8 | GetBValue(face));
}

/// Between the grey of its brightness and the button's face.
std::uint32_t Faded(std::uint32_t colour, std::uint32_t face) {
    const std::uint32_t grey = ((colour >> 16) * 3 + (colour >> 8 & 0xFF) * 6 + (colour & 0xFF)) / 10;
    std::uint32_t faded = 0;
    for (const int shift : {0, 8, 16})
        faded |= ((face >> shift & 0xFF) * 2 + std::max<std::uint32_t>(grey, 0x70)) / 3 << shift;
    return faded;
}

int AddIcon(HIMAGELIST list, std::vector<std::uint32_t> pixels, bool faded) {
    const std::uint32_t face = FaceColour();
    for (std::uint32_t& pixel : pixels)
        pixel = faded && pixel != face ? Faded(pixel, face) : pixel;
    const HDC screen = GetDC(nullptr);
    const OwnedGdi<HBITMAP> bitmap(CreateCompatibleBitmap(screen, kIconSize, kIconSize));
    const HDC memory = CreateCompatibleDC(screen);
    {
        const SelectedGdi selected(memory, bitmap.Get());
        Pixels(memory, 0, 0, kIconSize, kIconSize, pixels);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return ImageList_AddMasked(list, bitmap.Get(), GetSysColor(COLOR_BTNFACE));
}

} // namespace

Toolbar::~Toolbar() {
    for (const HIMAGELIST icons : {icons_, fadedIcons_}) {
        if (icons != nullptr) ImageList_Destroy(icons);
    }
}

int Toolbar::AddIcons(void (*draw)(IconPainter&)) const {
    IconPainter icon(kIconSize, FaceColour());
    draw(icon);
    AddIcon(fadedIcons_, icon.Pixels(), true);
    return AddIcon(icons_, icon.Pixels(), false);
}

bool Toolbar::Make(HWND parent) {
    toolbar_ = CreateWindowExA(0, TOOLBARCLASSNAMEA, "",
                               WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST |
                                   TBSTYLE_TOOLTIPS | CCS_TOP,
                               0, 0, 0, 0, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
    if (toolbar_ == nullptr) return false;
    SendMessageA(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageA(toolbar_, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS);
    SendMessageA(toolbar_, WM_SETFONT, reinterpret_cast<WPARAM>(Font(Face::Bold)), FALSE);
    icons_ = ImageList_Create(kIconSize, kIconSize, ILC_COLOR24 | ILC_MASK, 20, 4);
    fadedIcons_ = ImageList_Create(kIconSize, kIconSize, ILC_COLOR24 | ILC_MASK, 20, 4);
    SendMessageA(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(icons_));
    SendMessageA(toolbar_, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(fadedIcons_));
    SendMessageA(toolbar_, TB_SETBUTTONSIZE, 0, MAKELPARAM(32, 34));
    for (const Button& button : kButtons) {
        TBBUTTON made{};
        made.fsStyle = button.command == 0 ? BTNS_SEP : static_cast<BYTE>(BTNS_AUTOSIZE | button.style);
        made.fsState = TBSTATE_ENABLED;
        made.idCommand = button.command;
        made.iBitmap = button.command == 0 ? 8 : AddIcons(button.draw);
        made.iString = button.command == HOST_RUN_PLUGIN ? reinterpret_cast<INT_PTR>("Lumafold") : 0;
        SendMessageA(toolbar_, TB_ADDBUTTONSA, 1, reinterpret_cast<LPARAM>(&made));
        if (button.command == HOST_PLAY) AddIcons(DrawPause);
    }
    SendMessageA(toolbar_, TB_AUTOSIZE, 0, 0);
    return true;
}

int Toolbar::Height() const {
    RECT area{};
    GetWindowRect(toolbar_, &area);
    return area.bottom - area.top;
}

void Toolbar::Resize() const { SendMessageA(toolbar_, TB_AUTOSIZE, 0, 0); }

void Toolbar::Enable(int command, bool enabled) const {
    SendMessageA(toolbar_, TB_ENABLEBUTTON, static_cast<WPARAM>(command),
                 MAKELPARAM(enabled ? TRUE : FALSE, 0));
}

void Toolbar::Check(int command, bool checked) const {
    SendMessageA(toolbar_, TB_CHECKBUTTON, static_cast<WPARAM>(command),
                 MAKELPARAM(checked ? TRUE : FALSE, 0));
}

void Toolbar::ShowPlaying(bool playing) const {
    int play = 0;
    for (const Button& button : kButtons) {
        if (button.command == HOST_PLAY) break;
        if (button.command != 0) ++play;
    }
    SendMessageA(toolbar_, TB_CHANGEBITMAP, HOST_PLAY, MAKELPARAM(playing ? play + 1 : play, 0));
}

const char* ToolbarTip(int command) {
    for (const Button& button : kButtons) {
        if (button.command == command && command != 0) return button.tip;
    }
    return "";
}

} // namespace lumafold
