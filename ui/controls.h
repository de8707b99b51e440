// Reading and setting of the dialogs' controls: numbers with their up-down controls, drop-down lists, check
// boxes.
#pragma once

#include <windows.h>

#include <cstdint>

namespace lumafold {

/// What an up-down control's caption says, "minimum,maximum,start".
struct SpinRange {
    std::uint32_t minimum, maximum, start;
};

/// Of the up-down control that belongs to an edit box; 0 to 100 when its caption cannot be read.
SpinRange ReadSpinRange(HWND dialog, int editId);
/// Gives the up-down control the range and the start position of its caption.
void StartSpin(HWND dialog, int editId);

/// The unsigned number in an edit box, as typed; and brought into its range.
std::uint32_t ReadNumber(HWND dialog, int editId);
std::uint32_t ReadClamped(HWND dialog, int editId);
/// Writes the number, brought into the range.
void SetClamped(HWND dialog, int editId, std::uint32_t value);

/// Empties a combo box and fills it with the pieces of a text separated by ";", empty ones skipped, each cut
/// to 260 characters. How many there are then.
int FillChoices(HWND combo, const char* choices);
/// Fills a combo box with the names of the transitions, in the table's order.
void FillTransitions(HWND combo);
/// Fills a combo box with the names of the fixed palettes, as the string table has them.
void FillPalettes(HWND combo);
/// The row selected, raised to `low` and lowered to `high`, each unless negative.
int ReadSelection(HWND dialog, int comboId, int low, int high);

} // namespace lumafold
