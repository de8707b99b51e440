#include "resources/texts/resource_ids.h"
#include "settings/settings.h"
#include "ui/controls.h"
#include "ui/dialogs.h"
#include "ui/module.h"
#include "ui/painting.h"
#include "ui/session.h"

namespace lumafold {
namespace {

bool HasControl(const SettingDescriptor& row) {
    return row.dialog == SettingDialog::Advanced && row.controlId != 0;
}

void ShowSetting(HWND dialog, const SettingDescriptor& row) {
    const std::uint32_t value = Session().settings.*row.value;
    const HWND control = GetDlgItem(dialog, row.controlId);
    switch (row.kind) {
    case SettingKind::Choice:
        FillChoices(control, row.choices);
        SendMessageA(control, CB_SETCURSEL, value, 0);
        break;
    case SettingKind::Number:
        StartSpin(dialog, row.controlId);
        SetClamped(dialog, row.controlId, value);
        break;
    case SettingKind::Colour:
        SetSwatch(control, value);
        break;
    case SettingKind::Switch:
        CheckDlgButton(dialog, row.controlId, value != 0 ? BST_CHECKED : BST_UNCHECKED);
        break;
    case SettingKind::Fixed:
        break;
    }
}

void TakeSetting(HWND dialog, const SettingDescriptor& row) {
    std::uint32_t& value = Session().settings.*row.value;
    switch (row.kind) {
    case SettingKind::Choice:
        value = static_cast<std::uint32_t>(ReadSelection(dialog, row.controlId, static_cast<int>(row.minimum),
                                                         static_cast<int>(row.maximum)));
        break;
    case SettingKind::Number:
        value = ReadClamped(dialog, row.controlId);
        break;
    case SettingKind::Colour:
        value = SwatchColour(GetDlgItem(dialog, row.controlId));
        break;
    case SettingKind::Switch:
        value = IsDlgButtonChecked(dialog, row.controlId) == BST_CHECKED ? 1 : 0;
        break;
    case SettingKind::Fixed:
        break;
    }
}

template <typename Action>
void ForEachControl(HWND dialog, Action action) {
    for (const SettingDescriptor& row : SettingDescriptors())
        if (HasControl(row)) action(dialog, row);
}

bool IsSwatch(int controlId) {
    for (const SettingDescriptor& row : SettingDescriptors())
        if (HasControl(row) && row.controlId == controlId) return row.kind == SettingKind::Colour;
    return false;
}

/// The chooser belongs to the main dialog, as every host expects, so this one is closed to the mouse
/// meanwhile.
void ChangeSwatch(HWND dialog, HWND button) {
    COLORREF colour = SwatchColour(button);
    EnableWindow(dialog, FALSE);
    const bool chosen = ChooseColour(GetWindow(dialog, GW_OWNER), colour);
    EnableWindow(dialog, TRUE);
    SetFocus(button); // a disabled window has lost it
    if (chosen) SetSwatch(button, colour);
}

void Command(HWND dialog, int id, int notification, HWND control) {
    if (id == IDOK) ForEachControl(dialog, TakeSetting);
    if (id == IDOK || id == IDCANCEL) EndDialog(dialog, id == IDOK ? 1 : 0);
    if (id == LUMAFOLD_ID_HELP) ShowHelp(dialog, "ADVANCED");
    if (notification == BN_CLICKED && IsSwatch(id)) ChangeSwatch(dialog, control);
}

INT_PTR CALLBACK AdvancedProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        ForEachControl(dialog, ShowSetting);
        SetFocus(GetDlgItem(dialog, IDOK));
        return FALSE; // the focus is set
    case WM_COMMAND:
        Command(dialog, LOWORD(wparam), HIWORD(wparam), reinterpret_cast<HWND>(lparam));
        return TRUE;
    case WM_DRAWITEM:
        if (const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam); item.CtlType == ODT_STATIC)
            DrawGroupFrame(item);
        else
            DrawSwatch(item);
        return TRUE;
    default:
        return AnswerPainting(dialog, message, wparam, lparam);
    }
}

} // namespace

bool RunAdvancedDialog(HWND owner) {
    return DialogBoxParamA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_DIALOG_ADVANCED), owner,
                           AdvancedProcedure, 0) == 1;
}

} // namespace lumafold
