// The animated logo on an owner-drawn button: 24 pictures, one every 60 milliseconds. Its state is the
// button's window data: timer id, next frame, screen depth and whether it runs.
#pragma once

#include <windows.h>

namespace lumafold {

/// Sizes the button to the logo and starts its timer on the dialog.
void StartLogo(HWND dialog, int buttonId);
void PauseLogo(HWND dialog, int buttonId);
void ResumeLogo(HWND dialog, int buttonId);
void StopLogo(HWND dialog, int buttonId);

/// Offers a dialog message to the logo first: true when it was the logo's (its timer, its drawing) and goes
/// no further.
bool OfferToLogo(HWND dialog, int buttonId, UINT message, WPARAM wparam, LPARAM lparam);

} // namespace lumafold
