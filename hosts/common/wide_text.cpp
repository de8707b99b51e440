#include "hosts/common/wide_text.h"

#include <windows.h>

namespace lumafold {

std::wstring Wide(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    const auto take = [&](UINT codePage, DWORD flags) {
        return MultiByteToWideChar(codePage, flags, text.data(), bytes, wide.data(), bytes);
    };
    int units = take(CP_UTF8, MB_ERR_INVALID_CHARS);
    if (units == 0) units = take(CP_ACP, 0);
    wide.resize(static_cast<std::size_t>(units));
    return wide;
}

std::string Utf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0'); // never more for one unit
    const int used = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(used));
    return bytes;
}

} // namespace lumafold
