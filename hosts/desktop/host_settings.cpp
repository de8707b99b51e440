#include "hosts/desktop/host_settings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include "codecs/files.h"
#include "platform/folders.h"

namespace lumafold {
namespace {

using Values = std::map<std::string, std::string>;

/// The lines that have a value, by their keys. Sections are not told apart: there is one.
Values ReadValues(const std::string& path) {
    Values values;
    Array<std::uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) return values;
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

std::uint32_t Number(const Values& values, const std::string& key, std::uint32_t otherwise) {
    const auto found = values.find(key);
    return found == values.end()
               ? otherwise
               : static_cast<std::uint32_t>(std::strtoul(found->second.c_str(), nullptr, 10));
}

/// Numbered from 1.
std::vector<std::string> Files(const Values& values, const std::string& key) {
    std::vector<std::string> files;
    for (auto found = values.find(key + "1"); found != values.end() && !found->second.empty();
         found = values.find(key + std::to_string(files.size() + 1)))
        files.push_back(found->second);
    return files;
}

std::string FileLines(const std::string& key, const std::vector<std::string>& files) {
    std::string lines;
    for (std::size_t i = 0; i < files.size(); ++i)
        lines += key + std::to_string(i + 1) + "=" + files[i] + "\r\n";
    return lines;
}

std::string ColoursLine(const std::array<std::uint32_t, 16>& colours) {
    std::string line = "CustomColours=";
    char text[16];
    for (std::size_t i = 0; i < colours.size(); ++i) {
        std::snprintf(text, sizeof(text), "%s%06X", i > 0 ? "," : "", static_cast<unsigned>(colours[i]));
        line += text;
    }
    return line + "\r\n";
}

} // namespace

void HostSettings::RememberRecent(const std::string& path) {
    std::erase(recentFiles, path);
    recentFiles.insert(recentFiles.begin(), path);
    if (recentFiles.size() > kMostRecent) recentFiles.resize(kMostRecent);
}

void HostSettings::Load(const std::string& path) {
    const Values values = ReadValues(path);
    const auto text = [&](const char* key) {
        const auto found = values.find(key);
        return found == values.end() ? std::string() : found->second;
    };
    WindowSides read;
    if (std::sscanf(text("Window").c_str(), "%d,%d,%d,%d", &read.left, &read.top, &read.right,
                    &read.bottom) == 4)
        window = read;
    maximised = Number(values, "Maximised", maximised ? 1 : 0) == 1;
    capabilities =
        Number(values, "Capabilities", capabilities) & (kHostTakesSupercompression | kHostTakesTrueColour);
    if (capabilities == 0) capabilities = kHostTakesSupercompression;
    checkerboard = Number(values, "Checkerboard", checkerboard ? 1 : 0) != 0;
    const std::string colours = text("CustomColours");
    const char* at = colours.c_str();
    hasCustomColours = !colours.empty();
    for (std::uint32_t& colour : customColours) {
        char* end = nullptr;
        colour = static_cast<std::uint32_t>(std::strtoul(at, &end, 16)) & 0xFFFFFF;
        at = *end == ',' ? end + 1 : end;
    }
    openFiles = Files(values, "Open");
    recentFiles = Files(values, "Recent");
    recentFiles.resize(std::min(recentFiles.size(), kMostRecent));
}

void HostSettings::Save(const std::string& path) const {
    char place[64];
    std::snprintf(place, sizeof(place), "%d,%d,%d,%d", window.left, window.top, window.right, window.bottom);
    std::string text = "[Host]\r\nWindow=" + std::string(place) + "\r\n";
    text += std::string("Maximised=") + (maximised ? "1" : "0") + "\r\n";
    text += "Capabilities=" + std::to_string(capabilities) + "\r\n";
    text += std::string("Checkerboard=") + (checkerboard ? "1" : "0") + "\r\n";
    if (hasCustomColours) text += ColoursLine(customColours);
    text += FileLines("Open", openFiles) + FileLines("Recent", recentFiles);
    std::string error;
    MakeFoldersAbove(path.c_str());
    WriteFileSafely(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, error);
}

std::string HostSettingsPath() { return DataFolderPath("LUMAFOLD_HOST.INI"); }

} // namespace lumafold
