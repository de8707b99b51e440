#include "platform/user.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace lumafold {
namespace {

MessageHook messageHook = nullptr;
CursorHook cursorHook = nullptr;

} // namespace

void ShowMessage(WindowHandle window, const char* text) {
    if (messageHook != nullptr) {
        messageHook(window, text);
        return;
    }
#ifdef _WIN32
    MessageBoxA(reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window)), text, "Message", MB_OK);
#endif
}

MessageHook SetMessageHook(MessageHook hook) {
    const MessageHook before = messageHook;
    messageHook = hook;
    return before;
}

WaitCursor::WaitCursor() {
#ifdef _WIN32
    previous_ = SetCursor(LoadCursor(nullptr, IDC_WAIT));
#endif
    if (cursorHook != nullptr) cursorHook(Cursor::Wait);
}

WaitCursor::~WaitCursor() {
#ifdef _WIN32
    SetCursor(static_cast<HCURSOR>(previous_));
#endif
    if (cursorHook != nullptr) cursorHook(Cursor::Previous);
}

CursorHook SetCursorHook(CursorHook hook) {
    const CursorHook before = cursorHook;
    cursorHook = hook;
    return before;
}

} // namespace lumafold
