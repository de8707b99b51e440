#include "ui/list_actions.h"
#include "ui/messages.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "image/import.h"
#include "platform/folders.h"
#include "plugin/protocol/chosen_names.h"
#include "resources/texts/resource_ids.h"
#include "resources/texts/strings.h"
#include "settings/list_file.h"
#include "settings/settings.h"
#include "ui/dialogs.h"
#include "ui/list_box.h"
#include "ui/session.h"

namespace lumafold {
namespace {

HWND ListOf(HWND dialog) { return GetDlgItem(dialog, LUMAFOLD_MAIN_LIST); }

int Ask(HWND list, UINT message, WPARAM wparam = 0) {
    return static_cast<int>(SendMessageA(list, message, wparam, 0));
}

void Select(HWND list, int index) { Ask(list, LB_SETCURSEL, static_cast<WPARAM>(index)); }

Host CallingHost() { return Host(*Session().host); }

/// A zeroed entry with its label, and what the dialog's controls say.
ImageEntry NewEntry(HWND dialog, const char* label) {
    ListBoxImages controls(dialog);
    ImageEntry entry{};
    std::strncpy(entry.label, label, sizeof(entry.label) - 1);
    entry.transition = controls.DefaultTransition();
    entry.pause = controls.DefaultPause();
    entry.delay = controls.DefaultDelay();
    return entry;
}

/// Where new pictures go, below the selection, which stays. With nothing selected, -1, that is the top.
int InsertionIndex(HWND dialog) { return Ask(ListOf(dialog), LB_GETCURSEL) + 1; }

/// False after a message.
bool InsertPicture(HWND dialog, int index, const char* label, OwnedDib picture) {
    ImageEntry entry = NewEntry(dialog, label);
    entry.image = picture.Get();
    if (!InsertEntry(ListOf(dialog), index, entry)) {
        ShowString(dialog, LUMAFOLD_STRING_MEMORY_ERROR);
        return false;
    }
    (void)picture.Release();
    return true;
}

bool InsertFile(HWND dialog, int index, const char* path) {
    OwnedDib loaded = DibImport(CallingHost().LoadPicture(path));
    if (loaded) return InsertPicture(dialog, index, path, std::move(loaded));
    ShowString(dialog, LUMAFOLD_STRING_READ_ERROR);
    return false;
}

/// All at the same place, so that the last name ends up first (docs/quirks.md 70). False when the action
/// ended early, after a message.
bool InsertFiles(HWND dialog, const ChosenNames& names) {
    const int index = InsertionIndex(dialog);
    for (std::size_t i = 0; i < names.Count(); ++i) {
        char path[kMaxPath];
        if (!names.Path(i, path)) {
            ShowString(dialog, LUMAFOLD_STRING_READ_ERROR);
            return false;
        }
        if (!InsertFile(dialog, index, path)) return false;
    }
    return true;
}

/// Parts the folder from the names where its last letter is one of two bytes that ends in the one of "\\":
/// no reader of single bytes would do so.
void PartFolder(std::span<char> names) {
    const auto end = std::find(names.begin(), names.end(), '\0');
    if (end == names.begin() || names.end() - end < 2 || end[-1] != '\\' || end[1] == '\0') return;
    if (*CharPrevA(names.data(), &*end) == '\\') return;
    std::move_backward(end, names.end() - 1, names.end());
    *end = '\\';
}

void SelectLast(HWND dialog) {
    HWND list = ListOf(dialog);
    Select(list, Ask(list, LB_GETCOUNT) - 1);
}

} // namespace

void AddImages(HWND dialog) {
    Array<char> buffer(kChosenNamesBytes);
    if (!buffer) {
        ShowString(dialog, LUMAFOLD_STRING_MEMORY_ERROR);
        return;
    }
    if (!CallingHost().ChooseFiles(HandleOf(dialog), buffer.data())) return;
    PartFolder({buffer.data(), buffer.size()});
    if (InsertFiles(dialog, ChosenNames(buffer.data(), buffer.size()))) SelectLast(dialog);
    EnableByCount(dialog);
}

void PasteImage(HWND dialog) {
    OwnedDib pasted = DibImport(CallingHost().ClipboardPicture(HandleOf(dialog)));
    if (!pasted) {
        ShowMessage(dialog, LUMAFOLD_TEXT_CLIPBOARD_ERROR);
        return;
    }
    if (InsertPicture(dialog, InsertionIndex(dialog), LUMAFOLD_LABEL_CLIPBOARD, std::move(pasted)))
        SelectLast(dialog);
    EnableByCount(dialog);
}

void RemoveImage(HWND dialog) {
    HWND list = ListOf(dialog);
    const int index = Ask(list, LB_GETCARETINDEX);
    if (index >= 0 && index < Ask(list, LB_GETCOUNT)) {
        FreeEntry(list, index);
        Ask(list, LB_DELETESTRING, static_cast<WPARAM>(index));
        Select(list, std::min(index, Ask(list, LB_GETCOUNT) - 1));
    }
    EnableByCount(dialog);
}

void OverrideImage(HWND dialog) {
    HWND list = ListOf(dialog);
    const int index = Ask(list, LB_GETCARETINDEX);
    if (index < 0 || index >= Ask(list, LB_GETCOUNT)) return;
    ImageEntry entry;
    const bool done = ReadEntry(list, index, entry) &&
                      (!RunOverrideDialog(dialog, entry) || WriteEntry(list, index, entry));
    if (!done) ShowString(dialog, LUMAFOLD_STRING_MEMORY_ERROR);
}

void StoreDefault(HWND dialog, std::int32_t ImageEntry::*field, std::int32_t value) {
    HWND list = ListOf(dialog);
    const int count = Ask(list, LB_GETCOUNT);
    for (int i = 0; i < count; ++i) {
        ImageEntry entry;
        bool done = ReadEntry(list, i, entry);
        if (done && (entry.flags & kEntryOverride) == 0) {
            entry.*field = value;
            done = WriteEntry(list, i, entry);
        }
        if (!done) {
            ShowString(dialog, LUMAFOLD_STRING_MEMORY_ERROR);
            return;
        }
    }
}

void EnableByCount(HWND dialog) {
    const BOOL filled = Ask(ListOf(dialog), LB_GETCOUNT) > 0;
    for (const int id : {IDOK, LUMAFOLD_MAIN_TEST, LUMAFOLD_MAIN_REMOVE}) {
        HWND button = GetDlgItem(dialog, id);
        // A disabled control that kept the focus would leave the keyboard with nothing to talk to.
        if (filled == 0 && GetFocus() == button) {
            SendMessageA(dialog, WM_NEXTDLGCTL,
                         reinterpret_cast<WPARAM>(GetDlgItem(dialog, LUMAFOLD_MAIN_ADD)), TRUE);
        }
        EnableWindow(button, filled);
    }
}

bool RestoreList(HWND dialog) {
    ListFileReader file(ListFolderPath(kListFileName));
    char path[kListLineBytes];
    while (file.Next(path)) {
        if (!InsertFile(dialog, 0, path)) {
            EnableByCount(dialog); // what was restored so far can be built
            return false;
        }
    }
    Select(ListOf(dialog), 0);
    return true;
}

void SaveList(HWND dialog) {
    HWND list = ListOf(dialog);
    ListFileWriter file;
    const int count = Session().settings.PreserveListContents != 0 ? Ask(list, LB_GETCOUNT) : 0;
    for (int i = count - 1; i >= 0; --i) {
        ImageEntry entry;
        if (ReadEntry(list, i, entry)) file.Add(entry.label);
    }
    file.Write(ListFolderPath(kListFileName));
}

void FreeList(HWND dialog) {
    HWND list = ListOf(dialog);
    for (int i = Ask(list, LB_GETCOUNT) - 1; i >= 0; --i)
        FreeEntry(list, i);
    Ask(list, LB_RESETCONTENT);
}

} // namespace lumafold
