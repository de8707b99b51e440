#include "hosts/desktop/dialog_driver.h"

#include "hosts/common/wide_text.h"
#include "hosts/desktop/script_steps.h"

namespace lumafold {
namespace {

constexpr char kDialogClass[] = "#32770";
constexpr int kMessageText = 0xFFFF;

std::string ClassOf(HWND window) {
    char name[64] = "";
    GetClassNameA(window, name, sizeof(name));
    return name;
}

bool IsMessageBox(HWND window) {
    return TextOf(window) == "Message" && GetDlgItem(window, kMessageText) != nullptr;
}

struct Found {
    HWND dialog = nullptr, messageBox = nullptr;
};

BOOL CALLBACK Look(HWND window, LPARAM lparam) {
    auto* found = reinterpret_cast<Found*>(lparam);
    if (IsWindowVisible(window) == 0 || ClassOf(window) != kDialogClass) return TRUE;
    if (IsMessageBox(window)) {
        found->messageBox = window;
    } else if (IsWindowEnabled(window) != 0 && found->dialog == nullptr) {
        found->dialog = window;
    }
    return TRUE;
}

Found LookForDialogs() {
    Found found;
    EnumThreadWindows(GetCurrentThreadId(), &Look, reinterpret_cast<LPARAM>(&found));
    return found;
}

void Notify(HWND control, WORD code) {
    SendMessageW(GetParent(control), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), code),
                 reinterpret_cast<LPARAM>(control));
}

LONG ButtonKind(HWND control) { return GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK; }

bool SetCheckBox(HWND control, const std::string& value, std::string& error) {
    if (value != "0" && value != "1") {
        error = "a check box is 0 or 1";
        return false;
    }
    if (ControlValue(control) != value) SendMessageW(control, BM_CLICK, 0, 0);
    if (ControlValue(control) == value) return true;
    error = "the check box did not take it";
    return false;
}

bool SetCombo(HWND control, const std::string& value, std::string& error) {
    LRESULT row = SendMessageW(control, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                               reinterpret_cast<LPARAM>(Wide(value).c_str()));
    if (row == CB_ERR) row = WholeNumber(value).value_or(-1);
    if (row < 0 || SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(row), 0) == CB_ERR) {
        error = "the list has no such entry";
        return false;
    }
    Notify(control, CBN_SELCHANGE);
    Notify(control, CBN_CLOSEUP);
    return true;
}

} // namespace

std::string TextOf(HWND window) {
    const LRESULT length = SendMessageW(window, WM_GETTEXTLENGTH, 0, 0);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const LRESULT got = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(got));
    return Utf8(text);
}

HWND DialogInFront() { return LookForDialogs().dialog; }

std::optional<std::string> DismissMessageBox() {
    const HWND box = LookForDialogs().messageBox;
    if (box == nullptr) return std::nullopt;
    std::string text = TextOf(GetDlgItem(box, kMessageText));
    SendMessageW(box, WM_COMMAND, IDOK, 0);
    return text;
}

std::string ControlValue(HWND control) {
    if (ClassOf(control) == "Button" && !IsSwatch(control))
        return SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED ? "1" : "0";
    return TextOf(control);
}

bool SetControlValue(HWND control, const std::string& value, std::string& error) {
    const std::string type = ClassOf(control);
    if (IsWindowEnabled(control) == 0) {
        error = "the control is disabled";
        return false;
    }
    if (type == "Edit") {
        SetWindowTextW(control, Wide(value).c_str()); // tells its owner by itself
        return true;
    }
    if (type == "ComboBox") return SetCombo(control, value, error);
    if (type == "Button") return SetCheckBox(control, value, error);
    error = "no value can be given to this control";
    return false;
}

bool IsSwatch(HWND control) { return ClassOf(control) == "Button" && ButtonKind(control) == BS_OWNERDRAW; }

void Click(HWND control) { SendMessageW(control, BM_CLICK, 0, 0); }
void PostClick(HWND control) { PostMessageW(control, BM_CLICK, 0, 0); }

bool SelectListItem(HWND list, int index) {
    if (SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0) == LB_ERR) return false;
    Notify(list, LBN_SELCHANGE);
    return true;
}

void PostDoubleClick(HWND list) {
    PostMessageW(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), LBN_DBLCLK),
                 reinterpret_cast<LPARAM>(list));
}

} // namespace lumafold
