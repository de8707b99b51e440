#include "plugin/entry_points.h"

#include "plugin/host.h"
#include "plugin/module.h"

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
