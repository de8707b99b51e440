#include "hosts/desktop/system_paths.h"

#include <windows.h>

#include "hosts/common/wide_text.h"
#include "plugin/protocol/chosen_names.h"

namespace lumafold {
namespace {

/// What a call of the system writes, called again until its room is large enough. `write` returns the letters
/// written, 0 for failure, or, when there was too little room, no less than that.
template <typename Write>
std::wstring Written(Write write) {
    std::wstring text(MAX_PATH, L'\0');
    for (constexpr std::size_t kMost = 65536; text.size() <= kMost; text.resize(text.size() * 2)) {
        const DWORD length = write(text.data(), static_cast<DWORD>(text.size()));
        if (length >= text.size()) continue;
        text.resize(length);
        return text;
    }
    return L"";
}

std::wstring ShortName(const std::wstring& path) {
    return Written([&](wchar_t* into, DWORD room) { return GetShortPathNameW(path.c_str(), into, room); });
}

std::string InCodePage(const std::wstring& text) {
    const auto convert = [&](char* into, int most) {
        return WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), into, most, nullptr,
                                   nullptr);
    };
    std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

std::wstring FromCodePage(const std::string& bytes) {
    std::wstring text(bytes.size(), L'\0');
    text.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                                     text.data(), static_cast<int>(text.size()))));
    return text;
}

bool Fits(const std::wstring& path) {
    const std::string bytes = InCodePage(path);
    return bytes.size() < kMaxPath && FromCodePage(bytes) == path;
}

} // namespace

std::string FullPath(const std::string& path) {
    const std::wstring wide = Wide(path);
    const std::wstring full = Written(
        [&](wchar_t* into, DWORD room) { return GetFullPathNameW(wide.c_str(), room, into, nullptr); });
    return full.empty() ? path : Utf8(full);
}

std::string ProgramFolder() {
    const std::string path =
        Utf8(Written([](wchar_t* into, DWORD room) { return GetModuleFileNameW(nullptr, into, room); }));
    return path.substr(0, path.find_last_of('\\') + 1);
}

PluginPath PathForPlugin(const std::string& path) {
    std::wstring wide = Wide(path);
    if (!Fits(wide)) {
        const std::wstring shorter = ShortName(wide);
        if (!shorter.empty()) wide = shorter;
    }
    const std::size_t name = wide.find_last_of(L'\\') + 1;
    return {InCodePage(wide.substr(0, name)), InCodePage(wide.substr(name))};
}

std::vector<char> ChosenNamesBuffer(const std::vector<std::string>& paths) {
    if (paths.empty() || paths.size() > kMaxChosenNames) return {};
    const PluginPath first = PathForPlugin(paths.front());
    std::string names = paths.size() == 1 ? first.folder + first.name : first.folder;
    for (const std::string& path : paths) {
        const PluginPath each = PathForPlugin(path);
        if (each.folder != first.folder || each.folder.size() + each.name.size() >= kMaxPath) return {};
        if (paths.size() > 1) (names += '\0') += each.name;
    }
    names.append(2, '\0');
    if (names.size() > kChosenNamesBytes) return {};
    return {names.begin(), names.end()};
}

} // namespace lumafold
