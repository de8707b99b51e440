#include <algorithm>
#include <cstdio>
#include <cstring>

#include "resources/texts/resource_ids.h"
#include "ui/controls.h"
#include "ui/dialogs.h"
#include "ui/module.h"
#include "ui/painting.h"
#include "ui/thumbnail.h"

namespace lumafold {
namespace {

ImageEntry& EntryOf(HWND dialog) {
    return *reinterpret_cast<ImageEntry*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

/// The template's caption has "%s" in the place of the file's name.
void SetCaption(HWND dialog, const char* label) {
    char pattern[64] = "", caption[sizeof(ImageEntry::label) + sizeof pattern];
    GetWindowTextA(dialog, pattern, sizeof pattern);
    char* place = std::strstr(pattern, "%s");
    const char* behind = place != nullptr ? place + 2 : "";
    if (place != nullptr) *place = '\0';
    std::snprintf(caption, sizeof caption, "%s%s%s", pattern, place != nullptr ? FileNameOf(label) : "",
                  behind);
    SetWindowTextA(dialog, caption);
}

void Open(HWND dialog, const ImageEntry& entry) {
    StartSpin(dialog, LUMAFOLD_OVERRIDE_DELAY);
    StartSpin(dialog, LUMAFOLD_OVERRIDE_PAUSE);
    const HWND transitions = GetDlgItem(dialog, LUMAFOLD_OVERRIDE_TRANSITION);
    FillTransitions(transitions);
    SendMessageA(transitions, CB_SETCURSEL, static_cast<WPARAM>(entry.transition), 0);
    SetDlgItemInt(dialog, LUMAFOLD_OVERRIDE_DELAY, static_cast<UINT>(entry.delay), FALSE);
    SetDlgItemInt(dialog, LUMAFOLD_OVERRIDE_PAUSE, static_cast<UINT>(entry.pause), FALSE);
    SetCaption(dialog, entry.label);
    SetFocus(GetDlgItem(dialog, IDOK));
}

/// Numbers as typed: this dialog does not hold them to their ranges.
void ReadEntryBack(HWND dialog, ImageEntry& entry) {
    entry.delay = static_cast<std::int32_t>(ReadNumber(dialog, LUMAFOLD_OVERRIDE_DELAY));
    entry.pause = static_cast<std::int32_t>(ReadNumber(dialog, LUMAFOLD_OVERRIDE_PAUSE));
    entry.transition = ReadSelection(dialog, LUMAFOLD_OVERRIDE_TRANSITION, 0, -1);
}

void Close(HWND dialog, int button) {
    ImageEntry& entry = EntryOf(dialog);
    ReadEntryBack(dialog, entry);
    if (button == IDOK) entry.flags |= kEntryOverride;
    EndDialog(dialog, button == IDOK ? 1 : 0);
}

void Draw(HWND dialog, const DRAWITEMSTRUCT& item) {
    if (item.CtlID != LUMAFOLD_OVERRIDE_PICTURE) return;
    PaintBehind(item.hwndItem, item.hDC);
    DrawThumbnail(item, EntryOf(dialog).image);
}

INT_PTR CALLBACK OverrideProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrA(dialog, DWLP_USER, lparam);
        Open(dialog, EntryOf(dialog));
        return FALSE; // the focus is set
    case WM_COMMAND:
        if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) Close(dialog, LOWORD(wparam));
        if (LOWORD(wparam) == LUMAFOLD_ID_HELP) ShowHelp(dialog, "OVERRIDE");
        return TRUE;
    case WM_DRAWITEM:
        Draw(dialog, *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
        return TRUE;
    default:
        return AnswerPainting(dialog, message, wparam, lparam);
    }
}

} // namespace

bool RunOverrideDialog(HWND owner, ImageEntry& entry) {
    return DialogBoxParamA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_DIALOG_OVERRIDE), owner,
                           OverrideProcedure, reinterpret_cast<LPARAM>(&entry)) == 1;
}

} // namespace lumafold
