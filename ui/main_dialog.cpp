#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "build/build_driver.h"
#include "platform/folders.h"
#include "resources/texts/resource_ids.h"
#include "resources/texts/strings.h"
#include "settings/config_file.h"
#include "settings/settings.h"
#include "ui/controls.h"
#include "ui/dialogs.h"
#include "ui/list_actions.h"
#include "ui/list_box.h"
#include "ui/logo.h"
#include "ui/messages.h"
#include "ui/module.h"
#include "ui/painting.h"
#include "ui/session.h"

namespace lumafold {
namespace {

constexpr INT_PTR kCancelled = 0, kBuilt = 1, kNoCallback = 2;
constexpr int kItemHeight = 100;

/// A check box and the switch it stands for.
struct CheckBox {
    int id;
    std::uint32_t PluginSettings::*value;
};
constexpr CheckBox kCheckBoxes[] = {
    {LUMAFOLD_MAIN_SUPERCOMPRESS, &PluginSettings::Supercompress},
    {LUMAFOLD_MAIN_DITHER, &PluginSettings::TransitionDither},
    {LUMAFOLD_MAIN_CUSTOM_PALETTE, &PluginSettings::TransitionCustompalette},
    {LUMAFOLD_MAIN_TRUE_COLOUR, &PluginSettings::TransitionTruecolour},
};

bool HasCallback() { return Session().host != nullptr && Session().host->callback != nullptr; }
bool HostTakes(std::uint32_t capability) { return (Session().host->capabilityFlags & capability) != 0; }
bool ShiftIsDown() { return GetKeyState(VK_SHIFT) < 0; }

void Disable(HWND dialog, int id) { EnableWindow(GetDlgItem(dialog, id), FALSE); }
std::uint32_t Choice(HWND dialog, int comboId) {
    return static_cast<std::uint32_t>(ReadSelection(dialog, comboId, 0, -1));
}
void Choose(HWND dialog, int comboId, std::uint32_t row) {
    SendDlgItemMessageA(dialog, comboId, CB_SETCURSEL, row, 0);
}

/// Amid the window that called, and whole within the screen's free area.
void Centre(HWND dialog) {
    HWND parent = GetWindow(dialog, GW_OWNER);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    RECT own;
    if (GetWindowRect(dialog, &own) == 0 ||
        GetMonitorInfoA(MonitorFromWindow(parent != nullptr ? parent : dialog, MONITOR_DEFAULTTONEAREST),
                        &monitor) == 0) {
        return;
    }
    const RECT& free = monitor.rcWork;
    RECT around = free;
    if (parent != nullptr && IsWindowVisible(parent) != 0 && IsIconic(parent) == 0) {
        GetWindowRect(parent, &around);
    }
    const LONG width = own.right - own.left, height = own.bottom - own.top;
    const LONG left = std::min((around.left + around.right - width) / 2, free.right - width);
    const LONG top = std::min((around.top + around.bottom - height) / 2, free.bottom - height);
    SetWindowPos(dialog, nullptr, std::max(left, free.left), std::max(top, free.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void SettingsToControls(HWND dialog) {
    FillTransitions(GetDlgItem(dialog, LUMAFOLD_MAIN_TRANSITION));
    Choose(dialog, LUMAFOLD_MAIN_TRANSITION, Session().settings.TransitionType);
    FillPalettes(GetDlgItem(dialog, LUMAFOLD_MAIN_PALETTE));
    Choose(dialog, LUMAFOLD_MAIN_PALETTE, Session().settings.TransitionPalette);
    // Starting an up-down control writes into its edit box, so the numbers follow.
    StartSpin(dialog, LUMAFOLD_MAIN_DELAY);
    StartSpin(dialog, LUMAFOLD_MAIN_PAUSE);
    SetClamped(dialog, LUMAFOLD_MAIN_DELAY, Session().settings.TransitionDelay);
    SetClamped(dialog, LUMAFOLD_MAIN_PAUSE, Session().settings.TransitionPause);
    for (const CheckBox& box : kCheckBoxes) {
        CheckDlgButton(dialog, box.id, Session().settings.*box.value != 0 ? BST_CHECKED : BST_UNCHECKED);
    }
}

void ControlsToSettings(HWND dialog) {
    Session().settings.TransitionPalette = Choice(dialog, LUMAFOLD_MAIN_PALETTE);
    Session().settings.TransitionType = Choice(dialog, LUMAFOLD_MAIN_TRANSITION);
    Session().settings.TransitionDelay = ReadClamped(dialog, LUMAFOLD_MAIN_DELAY);
    Session().settings.TransitionPause = ReadClamped(dialog, LUMAFOLD_MAIN_PAUSE);
    for (const CheckBox& box : kCheckBoxes) {
        Session().settings.*box.value = IsDlgButtonChecked(dialog, box.id) == BST_CHECKED ? 1 : 0;
    }
}

void FollowCapabilities(HWND dialog) {
    // The pause's own range gives way too, so that it is at least 1 here (docs/quirks.md 72).
    const char* range = HostTakes(kHostTakesSupercompression) ? "1,1000,10" : "1,10000,100";
    SetDlgItemTextA(dialog, LUMAFOLD_MAIN_DELAY + LUMAFOLD_UPDOWN, range);
    SetDlgItemTextA(dialog, LUMAFOLD_MAIN_PAUSE + LUMAFOLD_UPDOWN, range);
    ApplyCapabilities(Session().settings, Session().host->capabilityFlags);
    if (!HostTakes(kHostTakesSupercompression)) Disable(dialog, LUMAFOLD_MAIN_SUPERCOMPRESS);
}

/// A list that cannot be restored ends the opening where it is.
void Open(HWND dialog) {
    const Raised busy(Session().busy);
    if (!ShiftIsDown()) LoadSettings(DataFolderPath(kConfigFileName), Session().settings);
    if (!HostTakes(kHostTakesTrueColour)) Disable(dialog, LUMAFOLD_MAIN_TRUE_COLOUR);
    if (!HasCallback()) {
        ShowMessage(dialog, LUMAFOLD_TEXT_INTERNAL_ERROR);
        PostMessageA(dialog, WM_CLOSE, 0, 0);
        return;
    }
    FollowCapabilities(dialog);
    EnableDragging(GetDlgItem(dialog, LUMAFOLD_MAIN_LIST));
    SettingsToControls(dialog);
    SetFocus(GetDlgItem(dialog, IDOK));
    SendDlgItemMessageA(dialog, LUMAFOLD_MAIN_LIST, LB_SETITEMHEIGHT, 0, kItemHeight);
    EnableWindow(GetDlgItem(dialog, LUMAFOLD_MAIN_PASTE), IsClipboardFormatAvailable(CF_DIB));
    SetSwatch(GetDlgItem(dialog, LUMAFOLD_MAIN_MATTE), Session().settings.TransitionMattcolour);
    if (!ShiftIsDown() && !RestoreList(dialog)) return;
    EnableByCount(dialog);
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(LUMAFOLD_MAIN_CUSTOM_PALETTE, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, LUMAFOLD_MAIN_CUSTOM_PALETTE)));
    StartLogo(dialog, LUMAFOLD_MAIN_LOGO);
    SetWindowTextA(dialog, kPluginName);
}

void Close(HWND dialog) {
    StopLogo(dialog, LUMAFOLD_MAIN_LOGO);
    SaveSettings(DataFolderPath(kConfigFileName), Session().settings);
    SaveList(dialog);
    // A host that destroys the dialog under a running build leaves it the pictures it is working on.
    if (!Session().building) FreeList(dialog);
}

/// The list is grey while a palette is computed, whatever it says.
void EnableByPalette(HWND dialog) {
    EnableWindow(GetDlgItem(dialog, LUMAFOLD_MAIN_PALETTE),
                 IsDlgButtonChecked(dialog, LUMAFOLD_MAIN_CUSTOM_PALETTE) != BST_CHECKED);
}

/// Labels and lines, which take no input. Disabled, they would draw themselves again on a background that
/// nobody cleared.
bool IsLabel(HWND control) { return (SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) != 0; }

/// While it lives no control takes a click or a key, since the host may turn the message loop during a build.
/// Afterwards each is enabled as it was, or as its own rule says.
class DisabledControls {
public:
    explicit DisabledControls(HWND dialog) : dialog_(dialog), focus_(GetFocus()) {
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            if (count_ == std::size(disabled_) || IsWindowEnabled(child) == 0 || IsLabel(child)) continue;
            disabled_[count_++] = child;
            EnableWindow(child, FALSE);
        }
    }
    DisabledControls(const DisabledControls&) = delete;
    DisabledControls& operator=(const DisabledControls&) = delete;
    ~DisabledControls() {
        if (IsWindow(dialog_) == 0) return;
        for (std::size_t i = 0; i < count_; ++i)
            EnableWindow(disabled_[i], TRUE);
        EnableByCount(dialog_);
        EnableByPalette(dialog_);
        if (GetActiveWindow() == dialog_) SetFocus(focus_);
    }

private:
    HWND dialog_, focus_;
    HWND disabled_[64];
    std::size_t count_ = 0;
};

/// Controls whose values are followed as they change, and what tells of it; -1 for anything they tell.
constexpr struct {
    int id, code;
} kFollowed[] = {{LUMAFOLD_MAIN_DELAY, -1},
                 {LUMAFOLD_MAIN_PAUSE, -1},
                 {LUMAFOLD_MAIN_TRANSITION, CBN_CLOSEUP},
                 {LUMAFOLD_MAIN_PALETTE, CBN_CLOSEUP}};

/// The build goes on with the values it began with; FollowPostponed makes up for it.
void Postpone(int id, int code) {
    for (std::size_t i = 0; i < std::size(kFollowed); ++i) {
        if (kFollowed[i].id == id && (kFollowed[i].code == -1 || kFollowed[i].code == code))
            Session().postponed |= 1U << i;
    }
}

void Notified(HWND dialog, int id, int code);

void FollowPostponed(HWND dialog) {
    const unsigned postponed = std::exchange(Session().postponed, 0);
    for (std::size_t i = 0; i < std::size(kFollowed) && IsWindow(dialog) != 0; ++i) {
        if ((postponed >> i & 1) != 0) Notified(dialog, kFollowed[i].id, kFollowed[i].code);
    }
}

void Build(HWND dialog, TaskKind kind) {
    const Raised building(Session().building);
    PauseLogo(dialog, LUMAFOLD_MAIN_LOGO);
    ControlsToSettings(dialog);
    const DisabledControls disabled(dialog);
    ListBoxImages images(dialog);
    // The line that stands in for a second picture comes and goes above the selection.
    HWND list = GetDlgItem(dialog, LUMAFOLD_MAIN_LIST);
    const LRESULT selected = SendMessageA(list, LB_GETCURSEL, 0, 0);
    BuildMessages messages(dialog);
    BuildAnimation({images, HandleOf(dialog), *Session().host, kind, Session().settings, messages, Runner(),
                    UsualBudget()});
    if (SendMessageA(list, LB_GETCURSEL, 0, 0) != selected) {
        SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
    }
    ResumeLogo(dialog, LUMAFOLD_MAIN_LOGO);
}

void RunBuild(HWND dialog, TaskKind kind) {
    Build(dialog, kind);
    FollowPostponed(dialog);
}

void RepaintMatte(HWND dialog) { InvalidateRect(GetDlgItem(dialog, LUMAFOLD_MAIN_MATTE), nullptr, TRUE); }

void ChooseMatte(HWND dialog) {
    COLORREF colour = Session().settings.TransitionMattcolour;
    if (!ChooseColour(dialog, colour)) return;
    Session().settings.TransitionMattcolour = colour;
    SetSwatch(GetDlgItem(dialog, LUMAFOLD_MAIN_MATTE), colour);
}

/// What the buttons do.
void Act(HWND dialog, int id) {
    const Raised busy(Session().busy);
    switch (id) {
    case IDOK:
        RunBuild(dialog, TaskKind::Build);
        EndDialog(dialog, kBuilt);
        break;
    case LUMAFOLD_MAIN_TEST:
        RunBuild(dialog, TaskKind::Test);
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        break;
    case IDCANCEL:
        EndDialog(dialog, HasCallback() ? kCancelled : kNoCallback);
        break;
    case LUMAFOLD_MAIN_ADD:
        AddImages(dialog);
        break;
    case LUMAFOLD_MAIN_PASTE:
        PasteImage(dialog);
        break;
    case LUMAFOLD_MAIN_REMOVE:
        RemoveImage(dialog);
        break;
    case LUMAFOLD_MAIN_MATTE:
        ChooseMatte(dialog);
        break;
    case LUMAFOLD_MAIN_ADVANCED:
        RunAdvancedDialog(dialog);
        InvalidateRect(GetDlgItem(dialog, LUMAFOLD_MAIN_LIST), nullptr, TRUE);
        break;
    case LUMAFOLD_ID_HELP:
        ShowHelp(dialog, nullptr);
        break;
    case LUMAFOLD_MAIN_ABOUT:
        RunAboutBox(dialog);
        break;
    case LUMAFOLD_MAIN_CUSTOM_PALETTE:
        EnableByPalette(dialog);
        [[fallthrough]];
    case LUMAFOLD_MAIN_TRUE_COLOUR:
        RepaintMatte(dialog); // shown in the palette that is in use
        break;
    default:
        break;
    }
}

void NotifiedByList(HWND dialog, int code) {
    if (code == LBN_SELCHANGE) EnableByCount(dialog);
    if (code == LBN_DBLCLK && !Session().busy) {
        const Raised busy(Session().busy);
        OverrideImage(dialog);
    }
}

void NotifiedByPaletteCombo(HWND dialog, int code) {
    if (code != CBN_CLOSEUP) return;
    Session().settings.TransitionPalette = Choice(dialog, LUMAFOLD_MAIN_PALETTE);
    RepaintMatte(dialog);
}

void NotifiedByTransitionCombo(HWND dialog, int code) {
    const int row = ReadSelection(dialog, LUMAFOLD_MAIN_TRANSITION, -1, -1);
    if (code == CBN_CLOSEUP && row >= 0) StoreDefault(dialog, &ImageEntry::transition, row);
}

void Notified(HWND dialog, int id, int code) {
    switch (id) {
    case LUMAFOLD_MAIN_LIST:
        NotifiedByList(dialog, code);
        break;
    // Whatever the edit boxes tell, coming and going of the focus included.
    case LUMAFOLD_MAIN_DELAY:
        StoreDefault(dialog, &ImageEntry::delay, ListBoxImages(dialog).DefaultDelay());
        break;
    case LUMAFOLD_MAIN_PAUSE:
        StoreDefault(dialog, &ImageEntry::pause, ListBoxImages(dialog).DefaultPause());
        break;
    case LUMAFOLD_MAIN_TRANSITION:
        NotifiedByTransitionCombo(dialog, code);
        break;
    case LUMAFOLD_MAIN_PALETTE:
        NotifiedByPaletteCombo(dialog, code);
        break;
    default:
        // A check box has changed by itself already, so what depends on it follows at any time.
        if (code == BN_CLICKED &&
            (!Session().busy || id == LUMAFOLD_MAIN_CUSTOM_PALETTE || id == LUMAFOLD_MAIN_TRUE_COLOUR)) {
            Act(dialog, id);
        }
        break;
    }
}

void Command(HWND dialog, int id, int code) {
    if (Session().building) {
        Postpone(id, code);
        return;
    }
    if (HasCallback() || id == IDCANCEL) Notified(dialog, id, code);
}

void DrawItem(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == LUMAFOLD_MAIN_LIST) DrawListItem(item);
    if (item.CtlID == LUMAFOLD_MAIN_MATTE) DrawSwatch(item);
}

INT_PTR CALLBACK MainProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (OfferToLogo(dialog, LUMAFOLD_MAIN_LOGO, message, wparam, lparam)) return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        Session().host = reinterpret_cast<const HostContext*>(lparam);
        Session().dialog = dialog;
        Centre(dialog);
        SetForegroundWindow(dialog);
        Open(dialog);
        return FALSE; // the focus is set
    case WM_COMMAND:
        Command(dialog, LOWORD(wparam), HIWORD(wparam));
        return TRUE;
    case WM_CLOSE:
        // The system would make a press of "Cancel" of it, to come after the build.
        return Session().building ? TRUE : FALSE;
    case WM_DRAWITEM:
        DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
        return TRUE;
    case WM_DESTROY:
        if (Session().host != nullptr) Close(dialog); // else it was never opened
        return TRUE;
    default:
        return AnswerPainting(dialog, message, wparam, lparam);
    }
}

} // namespace

INT_PTR RunMainDialog(HWND parent, const HostContext& host) {
    InitCommonControls(); // or the up-down controls have no class, and the dialog none of its windows
    return DialogBoxParamA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_DIALOG_MAIN), parent, MainProcedure,
                           reinterpret_cast<LPARAM>(&host));
}

} // namespace lumafold
