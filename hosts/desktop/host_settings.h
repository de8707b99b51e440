// What the program remembers between runs, in an INI file beside the plug-in's own.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "settings/settings.h"

namespace lumafold {

/// Sides of a window in pixels of the whole desktop.
struct WindowSides {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

struct HostSettings {
    static constexpr std::size_t kMostRecent = 9;

    WindowSides window; ///< empty while none was kept
    bool maximised = false;
    std::uint32_t capabilities = kHostTakesSupercompression;
    bool checkerboard = true;
    bool hasCustomColours = false;
    std::array<std::uint32_t, 16> customColours{};
    std::vector<std::string> openFiles;   ///< full paths, as they stood in the list
    std::vector<std::string> recentFiles; ///< the last one first

    /// Puts it in front of the recent files.
    void RememberRecent(const std::string& path);

    /// What cannot be read, or makes no sense, stays as it is.
    void Load(const std::string& path);
    /// Quietly does nothing where the file cannot be written.
    void Save(const std::string& path) const;
};

/// Where the program keeps them.
std::string HostSettingsPath();

} // namespace lumafold
