#include "hosts/desktop/host_settings.h"

#include <cstdio>
#include <cstdlib>

#include "platform/folders.h"

namespace lumafold {
namespace {

constexpr char kFile[] = "LUMAFOLD_HOST.INI", kSection[] = "Host";

std::string Read(const char* key) {
    char text[512] = "";
    GetPrivateProfileStringA(kSection, key, "", text, sizeof(text), DataFolderPath(kFile));
    return text;
}

std::uint32_t ReadNumber(const char* key, std::uint32_t otherwise) {
    return GetPrivateProfileIntA(kSection, key, static_cast<INT>(otherwise), DataFolderPath(kFile));
}

void Write(const char* key, const std::string& value) {
    WritePrivateProfileStringA(kSection, key, value.c_str(), DataFolderPath(kFile));
}

/// The system makes the file, but not the folder it is in.
void MakeFolder() {
    const std::string path = DataFolderPath(kFile);
    CreateDirectoryA(path.substr(0, path.find_last_of("\\/")).c_str(), nullptr);
}

} // namespace

void HostSettings::Load() {
    const std::string place = Read("Window");
    RECT read{};
    if (std::sscanf(place.c_str(), "%ld,%ld,%ld,%ld", &read.left, &read.top, &read.right, &read.bottom) == 4)
        window = read;
    maximised = ReadNumber("Maximised", 0) == 1;
    capabilities =
        ReadNumber("Capabilities", capabilities) & (kHostTakesSupercompression | kHostTakesTrueColour);
    if (capabilities == 0) capabilities = kHostTakesSupercompression;
    checkerboard = ReadNumber("Checkerboard", 1) != 0;
    const std::string colours = Read("CustomColours");
    const char* at = colours.c_str();
    hasCustomColours = !colours.empty();
    for (std::uint32_t& colour : customColours) {
        char* end = nullptr;
        colour = static_cast<std::uint32_t>(std::strtoul(at, &end, 16)) & 0xFFFFFF;
        at = *end == ',' ? end + 1 : end;
    }
}

void HostSettings::Save() const {
    MakeFolder();
    char text[64];
    std::snprintf(text, sizeof(text), "%ld,%ld,%ld,%ld", window.left, window.top, window.right,
                  window.bottom);
    Write("Window", text);
    Write("Maximised", maximised ? "1" : "0");
    Write("Capabilities", std::to_string(capabilities));
    Write("Checkerboard", checkerboard ? "1" : "0");
    if (!hasCustomColours) return;
    std::string colours;
    for (const std::uint32_t colour : customColours) {
        std::snprintf(text, sizeof(text), "%s%06X", colours.empty() ? "" : ",",
                      static_cast<unsigned>(colour));
        colours += text;
    }
    Write("CustomColours", colours);
}

} // namespace lumafold
