// What the main dialog does to its image list: adding, pasting, removing, the defaults that entries follow,
// and keeping the list between runs. Whatever goes wrong is told to the person here.
#pragma once

#include <windows.h>

#include <cstdint>

#include "build/image_entry.h"

namespace lumafold {

void AddImages(HWND dialog);
void PasteImage(HWND dialog);
void RemoveImage(HWND dialog);

/// Gives the item under the caret a transition, delay and pause of its own.
void OverrideImage(HWND dialog);

/// Stores a default in every entry that has no values of its own.
void StoreDefault(HWND dialog, std::int32_t ImageEntry::*field, std::int32_t value);

/// Build, Test and Remove are enabled while there are items.
void EnableByCount(HWND dialog);

/// Fills the empty list from its file and selects the first item; false, after a message, when a picture or
/// its entry could not be had.
bool RestoreList(HWND dialog);
void SaveList(HWND dialog);
void FreeList(HWND dialog);

} // namespace lumafold
