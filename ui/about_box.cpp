#include "plugin/module.h"
#include "resources/resource_ids.h"
#include "ui/dialogs.h"
#include "ui/painting.h"

namespace lumafold {
namespace {

INT_PTR CALLBACK AboutProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_CTLCOLORSTATIC:
        return PaintStaticLabel(reinterpret_cast<HDC>(wparam));
    case WM_ERASEBKGND:
        PaintBackground(dialog, reinterpret_cast<HDC>(wparam));
        return TRUE;
    case WM_INITDIALOG:
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == LUMAFOLD_ID_HELP) ShowHelp(dialog, "ABOUT");
        if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

void RunAboutBox(HWND owner) {
    DialogBoxParamA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_DIALOG_ABOUT), owner, AboutProcedure, 0);
}

} // namespace lumafold
