#include "hosts/desktop/toolbar.h"

#include <algorithm>
#include <iterator>

#include "hosts/desktop/ids.h"
#include "resources/texts/toolbar_icons.h"

namespace lumafold {
namespace {

constexpr int kIconSize = 24, kButtonWidth = 34, kButtonHeight = 36;
constexpr int kDrawnSizes[] = {LUMAFOLD_ICON_SIZES};

struct Button {
    int command; ///< 0 for a gap
    int icon;    ///< its place in the strip that is drawn while building
    const wchar_t* tip;
    BYTE style;
};
constexpr Button kButtons[] = {
    {HOST_RUN_PLUGIN, LUMAFOLD_ICON_RUN, L"Make an animation (F5)", BTNS_SHOWTEXT},
    {},
    {HOST_OPEN, LUMAFOLD_ICON_OPEN, L"Open an animation (Ctrl+O)", 0},
    {HOST_SAVE, LUMAFOLD_ICON_SAVE, L"Save the animation (Ctrl+S)", 0},
    {HOST_COPY, LUMAFOLD_ICON_COPY, L"Copy this frame (Ctrl+C)", 0},
    {},
    {HOST_FIRST, LUMAFOLD_ICON_FIRST, L"First frame (Home)", 0},
    {HOST_PREVIOUS, LUMAFOLD_ICON_PREVIOUS, L"One frame back (Left)", 0},
    {HOST_PLAY, LUMAFOLD_ICON_PLAY, L"Play or pause (Space)", 0},
    {HOST_NEXT, LUMAFOLD_ICON_NEXT, L"One frame on (Right)", 0},
    {HOST_LAST, LUMAFOLD_ICON_LAST, L"Last frame (End)", 0},
    {},
    {HOST_ZOOM_OUT, LUMAFOLD_ICON_SMALLER, L"Smaller (-)", 0},
    {HOST_ZOOM_IN, LUMAFOLD_ICON_LARGER, L"Larger (+)", 0},
    {HOST_ZOOM_ACTUAL, LUMAFOLD_ICON_ACTUAL, L"Actual size (1)", 0},
    {HOST_ZOOM_FIT, LUMAFOLD_ICON_FIT, L"Fit the window (0)", BTNS_CHECK},
    {HOST_CHECKERBOARD, LUMAFOLD_ICON_CHECKERBOARD, L"Checkerboard behind transparent pixels (B)",
     BTNS_CHECK},
    {},
    {HOST_MANUAL, LUMAFOLD_ICON_HELP, L"Manual (F1)", 0},
};

/// The largest size drawn that is not too large.
int DrawnSize(int wanted) {
    const auto* next = std::upper_bound(std::begin(kDrawnSizes), std::end(kDrawnSizes), wanted);
    return next == std::begin(kDrawnSizes) ? *next : next[-1];
}

HIMAGELIST LoadIcons(int strip, int size) {
    const OwnedGdi<HBITMAP> bitmap(static_cast<HBITMAP>(LoadImageW(
        GetModuleHandleW(nullptr), MAKEINTRESOURCEW(strip), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
    HIMAGELIST icons = ImageList_Create(size, size, ILC_COLOR32, LUMAFOLD_ICONS, 0);
    if (icons != nullptr && bitmap) ImageList_Add(icons, bitmap.Get(), nullptr);
    return icons;
}

} // namespace

Toolbar::~Toolbar() { ForgetIcons(); }

void Toolbar::ForgetIcons() {
    for (HIMAGELIST* icons : {&icons_, &fadedIcons_}) {
        if (*icons != nullptr) ImageList_Destroy(*icons);
        *icons = nullptr;
    }
}

bool Toolbar::Make(HWND parent, const Look& look) {
    if (toolbar_ != nullptr) DestroyWindow(toolbar_);
    ForgetIcons();
    toolbar_ = CreateWindowExW(0, TOOLBARCLASSNAMEW, L"",
                               WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST |
                                   TBSTYLE_TOOLTIPS | CCS_TOP,
                               0, 0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (toolbar_ == nullptr) return false;
    SendMessageW(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(toolbar_, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
    SendMessageW(toolbar_, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font(Face::Plain)), FALSE);
    const int size = DrawnSize(look.At(kIconSize));
    icons_ = LoadIcons(HOST_TOOLBAR_ICONS + size, size);
    fadedIcons_ = LoadIcons(HOST_TOOLBAR_FADED_ICONS + size, size);
    SendMessageW(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(icons_));
    SendMessageW(toolbar_, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(fadedIcons_));
    SendMessageW(toolbar_, TB_SETBUTTONSIZE, 0, MAKELPARAM(look.At(kButtonWidth), look.At(kButtonHeight)));
    for (const Button& button : kButtons) {
        TBBUTTON made{};
        made.fsStyle = button.command == 0 ? BTNS_SEP : static_cast<BYTE>(BTNS_AUTOSIZE | button.style);
        made.fsState = TBSTATE_ENABLED;
        made.idCommand = button.command;
        made.iBitmap = button.command == 0 ? look.At(8) : button.icon;
        made.iString = button.command == HOST_RUN_PLUGIN ? reinterpret_cast<INT_PTR>(L"Lumafold") : 0;
        SendMessageW(toolbar_, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&made));
    }
    SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
    return true;
}

int Toolbar::Height() const {
    RECT area{};
    GetWindowRect(toolbar_, &area);
    return area.bottom - area.top;
}

void Toolbar::Resize() const { SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0); }

void Toolbar::Enable(int command, bool enabled) const {
    SendMessageW(toolbar_, TB_ENABLEBUTTON, static_cast<WPARAM>(command),
                 MAKELPARAM(enabled ? TRUE : FALSE, 0));
}

void Toolbar::Check(int command, bool checked) const {
    SendMessageW(toolbar_, TB_CHECKBUTTON, static_cast<WPARAM>(command),
                 MAKELPARAM(checked ? TRUE : FALSE, 0));
}

void Toolbar::ShowPlaying(bool playing) const {
    SendMessageW(toolbar_, TB_CHANGEBITMAP, HOST_PLAY,
                 MAKELPARAM(playing ? LUMAFOLD_ICON_PAUSE : LUMAFOLD_ICON_PLAY, 0));
}

const wchar_t* ToolbarTip(int command) {
    for (const Button& button : kButtons) {
        if (button.command == command && command != 0) return button.tip;
    }
    return L"";
}

} // namespace lumafold
