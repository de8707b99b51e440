#include "hosts/cli/paths.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace lumafold {

#ifdef _WIN32

std::filesystem::path PathOf(const std::string& name) {
    const int bytes = static_cast<int>(name.size());
    std::wstring wide(name.size(), L'\0'); // never more letters than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, name.data(), bytes, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

std::string NameOf(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int letters = static_cast<int>(wide.size());
    const auto convert = [&](char* into, int most) {
        return WideCharToMultiByte(CP_ACP, 0, wide.data(), letters, into, most, nullptr, nullptr);
    };
    std::string name(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(name.data(), static_cast<int>(name.size()));
    return name;
}

bool EndsInSeparator(const std::string& name) { return name.ends_with('/') || name.ends_with('\\'); }

#else

std::filesystem::path PathOf(const std::string& name) { return name; }

std::string NameOf(const std::filesystem::path& path) { return path.string(); }

bool EndsInSeparator(const std::string& name) { return name.ends_with('/'); }

#endif

} // namespace lumafold
