// What all dialogs of the plug-in paint themselves: the textured background, labels that stand on it, colour
// swatches.
#pragma once

#include <windows.h>

namespace lumafold {

/// Planes times bits of the screen; everything above 8 counts as 24.
int ScreenDepth();

/// Paints the part of its dialog's background that lies behind a control.
void PaintBehind(HWND control, HDC context);

/// What every dialog's procedure gives for the messages that it does not answer itself: the background and
/// the labels that stand on it are painted, all else is left to the system.
INT_PTR AnswerPainting(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

/// Answers WM_DRAWITEM of an owner-drawn static: a frame with the caption in its upper edge.
void DrawGroupFrame(const DRAWITEMSTRUCT& item);

/// Sets a swatch button's colour (0x00BBGGRR), which its caption names and its window data keeps, and
/// repaints it.
void SetSwatch(HWND button, COLORREF colour);
COLORREF SwatchColour(HWND button);
/// Answers WM_DRAWITEM of a swatch button.
void DrawSwatch(const DRAWITEMSTRUCT& item);

/// Asks the host for a colour, `colour` being the one before and, when true is returned, the one chosen.
bool ChooseColour(HWND owner, COLORREF& colour);

} // namespace lumafold
