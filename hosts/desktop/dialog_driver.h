// Dialogs driven from outside, by the messages that a person's hands would cause.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace lumafold {

/// The dialog of this program that takes input now, message boxes excepted; null for none.
HWND DialogInFront();
/// The text of an open message box of the plug-in, which is then told to close.
std::optional<std::string> DismissMessageBox();

/// The title of a window, or the text of a control, whatever letters its maker took.
std::string TextOf(HWND window);

/// What a control shows: an edit box's or list's text, "1" or "0" of a check box.
std::string ControlValue(HWND control);
/// Gives an edit box its text, a check box its state ("0", "1"), a list its entry by text or by number, each
/// with the notifications that its owner waits for. False with `error` in one line.
bool SetControlValue(HWND control, const std::string& value, std::string& error);
/// Whether it is one of the buttons that a colour is chosen with.
bool IsSwatch(HWND control);

void Click(HWND control);
/// The same, later: for buttons that open or close a dialog.
void PostClick(HWND control);
/// Chooses an item of a list box, as by a click, or a double click.
bool SelectListItem(HWND list, int index);
void PostDoubleClick(HWND list);

} // namespace lumafold
