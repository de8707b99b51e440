// What the engine shows the person who waits for it: a message, and the wait cursor. The system's own by
// default on Windows; elsewhere nothing, until a host says how it wants them shown.
#pragma once

#include <cstdint>

namespace lumafold {

/// A window of the system, or 0 where there is none.
using WindowHandle = std::uint32_t;

/// Shows `text` under the caption "Message", owned by `window`.
void ShowMessage(WindowHandle window, const char* text);

using MessageHook = void (*)(WindowHandle window, const char* text);
/// Takes the messages instead; null restores the default. The hook that was set before.
MessageHook SetMessageHook(MessageHook hook);

/// The wait cursor while it lives, then the one that was showing before.
class WaitCursor {
public:
    WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor();

private:
    [[maybe_unused]] void* previous_ = nullptr; // the system's cursor
};

enum class Cursor { Wait, Previous };
using CursorHook = void (*)(Cursor cursor);
/// Is told of the wait cursor's coming and going; null for none.
CursorHook SetCursorHook(CursorHook hook);

} // namespace lumafold
