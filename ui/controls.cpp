#include "ui/controls.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <commctrl.h>

#include "colour/palettes.h"
#include "resources/texts/resource_ids.h"
#include "resources/texts/strings.h"
#include "transitions/table.h"
#include "ui/module.h"

namespace lumafold {
namespace {

constexpr std::size_t kChoiceLength = 260;
constexpr SpinRange kUnreadableRange = {0, 100, 0};

/// The messages of the two kinds of list that can be filled.
struct ListMessages {
    UINT empty, add, count;
};

ListMessages MessagesOf(HWND list) {
    char className[16] = "";
    GetClassNameA(list, className, sizeof className);
    if (_stricmp(className, "ListBox") == 0) return {LB_RESETCONTENT, LB_ADDSTRING, LB_GETCOUNT};
    return {CB_RESETCONTENT, CB_ADDSTRING, CB_GETCOUNT};
}

} // namespace

SpinRange ReadSpinRange(HWND dialog, int editId) {
    char caption[64] = "";
    GetDlgItemTextA(dialog, editId + LUMAFOLD_UPDOWN, caption, sizeof caption);
    int minimum = 0, maximum = 0, start = 0;
    if (std::sscanf(caption, "%d,%d,%d", &minimum, &maximum, &start) != 3) return kUnreadableRange;
    return {static_cast<std::uint32_t>(minimum), static_cast<std::uint32_t>(maximum),
            static_cast<std::uint32_t>(start)};
}

void StartSpin(HWND dialog, int editId) {
    const SpinRange range = ReadSpinRange(dialog, editId);
    const HWND spin = GetDlgItem(dialog, editId + LUMAFOLD_UPDOWN);
    SendMessageA(spin, UDM_SETRANGE32, range.minimum, static_cast<LPARAM>(range.maximum));
    SendMessageA(spin, UDM_SETPOS32, 0, static_cast<LPARAM>(range.start));
}

// Not the dialog manager's reading, which makes 0 of a number too large and would turn it into the minimum:
// what is beyond the largest signed number stays that.
std::uint32_t ReadNumber(HWND dialog, int editId) {
    char text[32] = "";
    GetDlgItemTextA(dialog, editId, text, sizeof text);
    const char* digit = text + std::strspn(text, " \t");
    std::uint64_t number = 0;
    for (; *digit >= '0' && *digit <= '9'; ++digit)
        number = std::min<std::uint64_t>(number * 10 + static_cast<unsigned>(*digit - '0'), INT32_MAX);
    return static_cast<std::uint32_t>(number);
}

std::uint32_t ReadClamped(HWND dialog, int editId) {
    const SpinRange range = ReadSpinRange(dialog, editId);
    return std::max(range.minimum, std::min(ReadNumber(dialog, editId), range.maximum));
}

void SetClamped(HWND dialog, int editId, std::uint32_t value) {
    const SpinRange range = ReadSpinRange(dialog, editId);
    SetDlgItemInt(dialog, editId, std::max(range.minimum, std::min(value, range.maximum)), FALSE);
}

int FillChoices(HWND combo, const char* choices) {
    const ListMessages messages = MessagesOf(combo);
    SendMessageA(combo, messages.empty, 0, 0);
    while (*(choices += std::strspn(choices, ";")) != '\0') {
        const std::size_t length = std::strcspn(choices, ";");
        char piece[kChoiceLength + 1] = "";
        std::memcpy(piece, choices, std::min(length, kChoiceLength));
        SendMessageA(combo, messages.add, 0, reinterpret_cast<LPARAM>(piece));
        choices += length;
    }
    return static_cast<int>(SendMessageA(combo, messages.count, 0, 0));
}

void FillTransitions(HWND combo) {
    SendMessageA(combo, CB_RESETCONTENT, 0, 0);
    for (const TransitionRow& row : TransitionTable)
        SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row.name));
}

void FillPalettes(HWND combo) {
    SendMessageA(combo, CB_RESETCONTENT, 0, 0);
    for (UINT i = 0; i < kFixedPaletteCount; ++i) {
        char name[kChoiceLength + 1] = "";
        LoadStringA(ModuleInstance(), LUMAFOLD_STRING_PALETTE + i, name, sizeof name);
        SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
    }
}

int ReadSelection(HWND dialog, int comboId, int low, int high) {
    int selection = static_cast<int>(SendDlgItemMessageA(dialog, comboId, CB_GETCURSEL, 0, 0));
    if (low >= 0) selection = std::max(selection, low);
    if (high >= 0) selection = std::min(selection, high);
    return selection;
}

} // namespace lumafold
