// The plug-in's dialogs, each run modally until the person closes it.
#pragma once

#include <windows.h>

#include "build/image_entry.h"
#include "plugin/protocol/host.h"

namespace lumafold {

/// Everything the plug-in does for its user. The dialog's result: 1 after a build, 0 after Cancel, 2 when the
/// host gave no callback.
INT_PTR RunMainDialog(HWND parent, const HostContext& host);

/// Gives an entry a transition, delay and pause of its own; true after OK. The host's dialog keeps the entry.
bool RunOverrideDialog(HWND owner, ImageEntry& entry);

/// Edits the settings that have a control there; true after OK.
bool RunAdvancedDialog(HWND owner);

void RunAboutBox(HWND owner);

/// Asks the host to show the manual, at an anchor or, with null, at its beginning; tells the person when it
/// cannot.
void ShowHelp(HWND owner, const char* anchor);

} // namespace lumafold
