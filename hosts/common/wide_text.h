// Text as the hosts have it, UTF-8, and as the wide calls of Windows take it. On Windows alone.
#pragma once

#include <string>

namespace lumafold {

// Both may throw std::bad_alloc.
/// Bytes that are no UTF-8 are read in the process's code page, as names of files are.
std::wstring Wide(const std::string& text);
/// What is no text becomes the sign for an unknown letter.
std::string Utf8(const std::wstring& text);

} // namespace lumafold
