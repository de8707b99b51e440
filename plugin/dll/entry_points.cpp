#include "plugin/dll/entry_points.h"

#include "platform/gdi_win32.h"
#include "plugin/protocol/host.h"
#include "ui/dialogs.h"
#include "ui/module.h"
#include "ui/session.h"

BOOL WINAPI DllEntryPoint(HINSTANCE instance, DWORD, LPVOID) {
    lumafold::SetModuleInstance(instance);
    return 1;
}

// The image's real entry is the C++ runtime's, so that static objects are constructed; it calls this one by
// name.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    return DllEntryPoint(instance, reason, reserved);
}

BOOL WINAPI PLUGINGetPluginParams(lumafold::PluginParams* params) {
    lumafold::FillPluginParams(*params);
    return 1;
}

int WINAPI PLUGINDoBuild(HWND parent, const lumafold::HostContext* context) {
    constexpr int kFontHeight = 13;
    // What a host that gave no context is taken to have given: no callback, which the dialog reports.
    constexpr lumafold::HostContext kNoContext{};
    lumafold::DialogSession& session = lumafold::Session();
    if (session.open) return 1;
    {
        const lumafold::Raised open(session.open);
        const lumafold::OwnedGdi<HFONT> font(
            CreateFontA(kFontHeight, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial"));
        session.listFont = font.Get();
        lumafold::RunMainDialog(parent, context != nullptr ? *context : kNoContext);
        session.host = nullptr;
        session.dialog = nullptr;
        session.listFont = nullptr;
    }
    if (IsWindow(parent) != 0) {
        RedrawWindow(parent, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    }
    return 1;
}
