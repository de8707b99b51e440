#include "ui/messages.h"

#include "ui/module.h"

namespace lumafold {
namespace {

/// The text of a failure that has a number, as the string table has it.
constexpr int kMostTextBytes = 256;
bool LoadText(BuildFailure failure, char (&text)[kMostTextBytes]) {
    return failure == BuildFailure::Memory &&
           LoadStringA(ModuleInstance(), LUMAFOLD_STRING_MEMORY_ERROR, text, kMostTextBytes) > 0;
}

} // namespace

void ShowMessage(HWND owner, const char* text) { MessageBoxA(owner, text, "Message", MB_OK); }

void BuildMessages::Begin() { before_ = SetCursor(LoadCursor(nullptr, IDC_WAIT)); }
void BuildMessages::End() { SetCursor(before_); }

void BuildMessages::Fail(BuildFailure failure) {
    char text[kMostTextBytes];
    ShowMessage(owner_, LoadText(failure, text) ? text : TextOf(failure));
}

} // namespace lumafold
