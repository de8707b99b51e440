// What lumafold.dll exports, by these plain names (plugin/dll/lumafold.def). Hosts take the types from here
// and the addresses from the loaded library.
#pragma once

#include <windows.h>

#include "plugin/protocol/host_protocol.h"

extern "C" {

/// Remembers the module; always 1.
BOOL WINAPI DllEntryPoint(HINSTANCE instance, DWORD reason, LPVOID reserved);

/// Describes the plug-in in the host's record, which must have room for the whole notice; always 1.
BOOL WINAPI PLUGINGetPluginParams(lumafold::PluginParams* params);

/// Runs the plug-in's dialog over `parent` and redraws that afterwards; always 1. The context is read while
/// the dialog runs. A call from within one of the dialog's own commands does nothing.
int WINAPI PLUGINDoBuild(HWND parent, const lumafold::HostContext* context);
}
