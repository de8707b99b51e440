// A name of a file as the wide calls of Windows take it. Names are UTF-8 everywhere in the house, whatever
// code page the process has. For platform/ alone.
#pragma once

#include <windows.h>

#include "platform/files.h"

namespace lumafold::file_system {

/// Long paths get the prefix behind which the system counts to 32767 instead of 260, so they need no switch
/// of the machine's. Bytes that are no UTF-8 are read in the process's code page. What does not fit is "".
class WideName {
public:
    explicit WideName(const char* name);

    operator const wchar_t*() const { return text_; }

private:
    void TakePrefix();

    static constexpr std::size_t kPrefixRoom = 8;
    wchar_t text_[kPathBytes + kPrefixRoom];
};

} // namespace lumafold::file_system
