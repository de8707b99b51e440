// The image list: an owner-drawn list box whose items carry image entries, reordered by dragging.
#pragma once

#include <windows.h>

#include "build/image_list.h"

namespace lumafold {

/// Copy an item's whole record out or in; false when it has none or it cannot be locked.
bool ReadEntry(HWND list, int index, ImageEntry& entry);
bool WriteEntry(HWND list, int index, const ImageEntry& entry);
/// Frees the pictures and the record of an item, which the caller then deletes.
void FreeEntry(HWND list, int index);

/// Inserts an entry as a new item; the list owns it on success. On failure it is the caller's still.
bool InsertEntry(HWND list, int index, const ImageEntry& entry);

/// Answers WM_DRAWITEM of the list.
void DrawListItem(const DRAWITEMSTRUCT& item);

/// Makes the list reorder its items by dragging.
void EnableDragging(HWND list);

/// The list as the build driver sees it, with the dialog's controls for its defaults.
class ListBoxImages : public ImageList {
public:
    explicit ListBoxImages(HWND dialog);
    std::int32_t Count() override;
    bool Read(std::int32_t index, ImageEntry& entry) override;
    bool Write(std::int32_t index, const ImageEntry& entry) override;
    bool AddTemporary(GlobalHandle entry) override;
    void DeleteFirst() override;
    std::int32_t DefaultTransition() override;
    std::int32_t DefaultPause() override;
    std::int32_t DefaultDelay() override;

private:
    HWND dialog_;
    HWND list_;
};

} // namespace lumafold
