#include "ui/messages.h"

#include "ui/module.h"

namespace lumafold {

void ShowMessage(HWND owner, const char* text) { MessageBoxA(owner, text, "Message", MB_OK); }

void ShowString(HWND owner, UINT number) {
    char text[260] = "";
    LoadStringA(ModuleInstance(), number, text, sizeof(text));
    ShowMessage(owner, text);
}

void BuildMessages::Begin() { before_ = SetCursor(LoadCursor(nullptr, IDC_WAIT)); }
void BuildMessages::End() { SetCursor(before_); }

void BuildMessages::Fail(BuildFailure failure) {
    if (failure == BuildFailure::Memory) {
        ShowString(owner_, LUMAFOLD_STRING_MEMORY_ERROR);
    } else {
        ShowMessage(owner_, TextOf(failure));
    }
}

} // namespace lumafold
