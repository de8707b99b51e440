#include "resources/texts/resource_ids.h"
#include "ui/dialogs.h"
#include "ui/module.h"
#include "ui/painting.h"

namespace lumafold {
namespace {

/// The control that loaded the logo does not free it on every system.
void FreeLogo(HWND dialog) {
    const LRESULT logo = SendDlgItemMessageA(dialog, LUMAFOLD_ABOUT_LOGO, STM_SETIMAGE, IMAGE_BITMAP, 0);
    DeleteObject(reinterpret_cast<HGDIOBJ>(logo)); // NOLINT(performance-no-int-to-ptr)
}

INT_PTR CALLBACK AboutProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == LUMAFOLD_ID_HELP) ShowHelp(dialog, "ABOUT");
        if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) EndDialog(dialog, 0);
        return TRUE;
    case WM_DESTROY:
        FreeLogo(dialog);
        return TRUE;
    default:
        return AnswerPainting(dialog, message, wparam, lparam);
    }
}

} // namespace

void RunAboutBox(HWND owner) {
    DialogBoxParamA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_DIALOG_ABOUT), owner, AboutProcedure, 0);
}

} // namespace lumafold
