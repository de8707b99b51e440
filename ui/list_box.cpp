#include "ui/list_box.h"

#include <commctrl.h>

#include "platform/allocation.h"
#include "platform/gdi_win32.h"
#include "resources/texts/resource_ids.h"
#include "settings/settings.h"
#include "ui/controls.h"
#include "ui/module.h"
#include "ui/session.h"
#include "ui/thumbnail.h"

namespace lumafold {
namespace {

LRESULT Ask(HWND list, UINT message, int index, LPARAM value = 0) {
    return SendMessageA(list, message, static_cast<WPARAM>(index), value);
}

int Count(HWND list) { return static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0)); }

/// The block of an item's record, or 0.
GlobalHandle BlockOf(HWND list, int index) {
    if (index < 0 || index >= Count(list)) return 0;
    return static_cast<GlobalHandle>(Ask(list, LB_GETITEMDATA, index));
}

/// Inserts an item that carries `block`; without it there is no item.
bool InsertItem(HWND list, int index, const char* text, GlobalHandle block) {
    const auto at = static_cast<int>(Ask(list, LB_INSERTSTRING, index, reinterpret_cast<LPARAM>(text)));
    if (at < 0) return false;
    if (Ask(list, LB_SETITEMDATA, at, static_cast<LPARAM>(block)) != LB_ERR) return true;
    Ask(list, LB_DELETESTRING, at);
    return false;
}

void FillAround(const DRAWITEMSTRUCT& item, const RECT& thumbnail) {
    const SavedContext saved(item.hDC);
    ExcludeClipRect(item.hDC, thumbnail.left, thumbnail.top, thumbnail.right, thumbnail.bottom);
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillRect(item.hDC, &item.rcItem,
             selected ? GetSysColorBrush(COLOR_BTNSHADOW) : static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

void DrawLabel(const DRAWITEMSTRUCT& item, const char* name) {
    constexpr LONG kInset = 4;
    constexpr UINT kFormat = DT_SINGLELINE | DT_NOPREFIX;
    const SavedContext saved(item.hDC);
    if (Session().listFont != nullptr) SelectObject(item.hDC, Session().listFont);
    SetTextColor(item.hDC, RGB(0, 0, 0));
    SetBkMode(item.hDC, TRANSPARENT);
    // GDI reads bytes in the machine's code page, names are in the process's.
    wchar_t letters[sizeof(ImageEntry::label)];
    if (MultiByteToWideChar(CP_ACP, 0, name, -1, letters, static_cast<int>(std::size(letters))) == 0) return;
    RECT measured{};
    DrawTextW(item.hDC, letters, -1, &measured, kFormat | DT_CALCRECT);
    const LONG bottom = item.rcItem.bottom - kInset;
    RECT line{item.rcItem.left + kInset, bottom - (measured.bottom - measured.top),
              item.rcItem.right - kInset, bottom};
    DrawTextW(item.hDC, letters, -1, &line, kFormat | DT_VCENTER | DT_END_ELLIPSIS);
}

/// A drag from the press to the release. There is one list and one mouse.
struct Drag {
    int source = -1; ///< none while negative
    RECT sourceRect{};
    bool inside = false; ///< the pointer has not left the source item yet
};
Drag drag;
WNDPROC classProcedure = nullptr;

enum class Passing { On, Swallowed };
enum class Scrolling : BOOL { Off = FALSE, On = TRUE };

int ItemAt(HWND list, POINT screen, Scrolling scrolling) {
    return LBItemFromPt(list, screen, static_cast<BOOL>(scrolling));
}

POINT ClientPoint(LPARAM lparam) {
    return {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
}

POINT ScreenPoint(HWND list, LPARAM lparam) {
    POINT point = ClientPoint(lparam);
    ClientToScreen(list, &point);
    return point;
}

Passing BeginDrag(HWND list, LPARAM lparam) {
    drag = {};
    const int source = ItemAt(list, ScreenPoint(list, lparam), Scrolling::Off);
    if (source >= 0) {
        drag.source = source;
        drag.inside = Ask(list, LB_GETITEMRECT, source, reinterpret_cast<LPARAM>(&drag.sourceRect)) != LB_ERR;
    }
    PostMessageA(GetParent(list), WM_COMMAND,
                 MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(list)), LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(list));
    if (source < 0) return Passing::On;
    if (Ask(list, LB_GETTEXTLEN, source) <= 0) {
        drag = {};
        return Passing::Swallowed;
    }
    SetCapture(list);
    return Ask(list, LB_GETSEL, source) > 0 ? Passing::Swallowed : Passing::On;
}

Passing ContinueDrag(HWND list, LPARAM lparam) {
    const POINT point = ScreenPoint(list, lparam);
    ItemAt(list, point, Scrolling::On);
    if (drag.inside && PtInRect(&drag.sourceRect, ClientPoint(lparam)) != 0) return Passing::On;
    drag.inside = false;
    SetCursor(WindowFromPoint(point) == list
                  ? LoadCursorA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_CURSOR_DRAG))
                  : LoadCursor(nullptr, IDC_NO));
    return Passing::Swallowed;
}

/// The item goes to the target's place. Dragged down it therefore lands just above the item it was dropped
/// on, and the selection rests on that one; dragged up it takes its place and keeps the selection
/// (docs/quirks.md 71).
void MoveItem(HWND list, int source, int target) {
    const auto length = Ask(list, LB_GETTEXTLEN, source);
    if (length < 0) return;
    Array<char> text(static_cast<std::size_t>(length) + 1);
    if (!text || Ask(list, LB_GETTEXT, source, reinterpret_cast<LPARAM>(text.data())) < 0) return;
    if (!InsertItem(list, target, text.data(), BlockOf(list, source))) return;
    Ask(list, LB_DELETESTRING, target < source ? source + 1 : source);
    Ask(list, LB_SETCURSEL, target);
}

void EndDrag(HWND list, LPARAM lparam) {
    const int source = drag.source;
    drag = {};
    const int target = ItemAt(list, ScreenPoint(list, lparam), Scrolling::Off);
    if (source >= 0 && target >= 0 && target != source && !Session().busy) MoveItem(list, source, target);
    ReleaseCapture();
}

/// The list takes the mouse for itself at other times: between a double click and its release, for one.
bool IsDragging(HWND list) { return drag.source >= 0 && GetCapture() == list; }

Passing FollowMouse(HWND list, UINT message, LPARAM lparam) {
    switch (message) {
    case WM_LBUTTONDOWN:
        return Session().busy ? Passing::On : BeginDrag(list, lparam);
    case WM_MOUSEMOVE:
        return IsDragging(list) ? ContinueDrag(list, lparam) : Passing::On;
    case WM_LBUTTONUP:
        if (IsDragging(list)) EndDrag(list, lparam);
        return Passing::On;
    default:
        return Passing::On;
    }
}

/// Whether a message ends a drag before its time: the mouse is taken away, or the items are numbered anew.
bool EndsDragging(HWND list, UINT message, LPARAM lparam) {
    switch (message) {
    case WM_CAPTURECHANGED:
        return WindowOf(static_cast<WindowHandle>(lparam)) != list;
    case WM_CANCELMODE:
    case LB_INSERTSTRING:
    case LB_ADDSTRING:
    case LB_DELETESTRING:
    case LB_RESETCONTENT:
        return true;
    default:
        return false;
    }
}

void GiveUpDrag(HWND list) {
    const bool held = IsDragging(list);
    drag = {};
    if (held) ReleaseCapture();
}

/// The list's delete key presses the dialog's button.
void PressRemove(HWND list) {
    HWND dialog = GetParent(list);
    HWND button = GetDlgItem(dialog, LUMAFOLD_MAIN_REMOVE);
    if (IsWindowEnabled(button) == 0) return;
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(LUMAFOLD_MAIN_REMOVE, BN_CLICKED),
                 reinterpret_cast<LPARAM>(button));
}

LONG ClientWidth(HWND list) {
    RECT client{};
    GetClientRect(list, &client);
    return client.right;
}

LRESULT CALLBACK ListProcedure(HWND list, UINT message, WPARAM wparam, LPARAM lparam) {
    if (EndsDragging(list, message, lparam)) GiveUpDrag(list);
    if (message == WM_KEYDOWN && wparam == VK_DELETE) PressRemove(list);
    if (FollowMouse(list, message, lparam) == Passing::Swallowed) return 0;
    const LONG width = ClientWidth(list);
    const LRESULT answer = CallWindowProcA(classProcedure, list, message, wparam, lparam);
    // Thumbnails stand amid their items, so all of them move when the scroll bar comes or goes.
    if (ClientWidth(list) != width) InvalidateRect(list, nullptr, TRUE);
    return answer;
}

} // namespace

bool ReadEntry(HWND list, int index, ImageEntry& entry) {
    const GlobalLocked<ImageEntry> record(BlockOf(list, index));
    if (record) entry = *record;
    return static_cast<bool>(record);
}

bool WriteEntry(HWND list, int index, const ImageEntry& entry) {
    const GlobalLocked<ImageEntry> record(BlockOf(list, index));
    if (record) *record = entry;
    return static_cast<bool>(record);
}

void FreeEntry(HWND list, int index) {
    const OwnedGlobal block(BlockOf(list, index));
    ImageEntry entry;
    if (ReadEntry(list, index, entry)) {
        const OwnedDib image(entry.image), work(entry.workImage);
        WriteEntry(list, index, ImageEntry{});
    }
    Ask(list, LB_SETITEMDATA, index);
}

bool InsertEntry(HWND list, int index, const ImageEntry& entry) {
    OwnedGlobal block(GlobalCreate(GlobalKind::Movable, sizeof(ImageEntry)));
    {
        const GlobalLocked<ImageEntry> record(block.Get());
        if (!record) return false;
        *record = entry;
    }
    if (!InsertItem(list, index, entry.label, block.Get())) return false;
    (void)block.Release();
    return true;
}

void DrawListItem(const DRAWITEMSTRUCT& item) {
    ImageEntry entry;
    if (!ReadEntry(item.hwndItem, static_cast<int>(item.itemID), entry)) return;
    FillAround(item, DrawThumbnail(item, entry.image));
    if (Session().settings.ShowListLabels != 0) DrawLabel(item, FileNameOf(entry.label));
}

void EnableDragging(HWND list) {
    drag = {};
    WNDCLASSA windowClass;
    if (GetClassInfoA(nullptr, WC_LISTBOXA, &windowClass) == 0) return;
    classProcedure = windowClass.lpfnWndProc;
    SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ListProcedure));
}

ListBoxImages::ListBoxImages(HWND dialog) : dialog_(dialog), list_(GetDlgItem(dialog, LUMAFOLD_MAIN_LIST)) {}

std::int32_t ListBoxImages::Count() { return lumafold::Count(list_); }
bool ListBoxImages::Read(std::int32_t index, ImageEntry& entry) { return ReadEntry(list_, index, entry); }
bool ListBoxImages::Write(std::int32_t index, const ImageEntry& entry) {
    return WriteEntry(list_, index, entry);
}
bool ListBoxImages::AddTemporary(GlobalHandle entry) {
    // Where sorting would put it, whatever the locale thinks of blanks.
    return InsertItem(list_, 0, " ", entry);
}
void ListBoxImages::DeleteFirst() {
    const OwnedGlobal block(BlockOf(list_, 0));
    Ask(list_, LB_DELETESTRING, 0);
}

std::int32_t ListBoxImages::DefaultTransition() {
    return ReadSelection(dialog_, LUMAFOLD_MAIN_TRANSITION, 0, -1);
}
std::int32_t ListBoxImages::DefaultPause() {
    return static_cast<std::int32_t>(ReadNumber(dialog_, LUMAFOLD_MAIN_PAUSE));
}
std::int32_t ListBoxImages::DefaultDelay() {
    return static_cast<std::int32_t>(ReadNumber(dialog_, LUMAFOLD_MAIN_DELAY));
}

} // namespace lumafold
