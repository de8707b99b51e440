// Calls that newer systems have and older ones do not, looked up when they are needed.
#pragma once

#include <windows.h>

namespace lumafold {

/// A call of user32 by its name; null where the system has none.
template <typename Call>
Call SystemCall(const char* name) {
    const HMODULE library = GetModuleHandleW(L"user32.dll");
    return reinterpret_cast<Call>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

} // namespace lumafold
