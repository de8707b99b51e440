// Text as the hosts have it, UTF-8, and as the wide calls of Windows take it. On Windows alone.
#pragma once

#include <string>

namespace lumafold {

/// What is no UTF-8 becomes the sign for an unknown letter. Both may throw std::bad_alloc.
std::wstring Wide(const std::string& text);
std::string Utf8(const std::wstring& text);

} // namespace lumafold
