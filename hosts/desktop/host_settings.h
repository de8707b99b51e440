// What the program remembers between runs, in an INI file beside the plug-in's own.
#pragma once

#include <windows.h>

#include <array>
#include <string>

#include "settings/settings.h"

namespace lumafold {

struct HostSettings {
    RECT window{}; ///< empty while none was kept
    bool maximised = false;
    std::uint32_t capabilities = kHostTakesSupercompression;
    bool checkerboard = true;
    bool hasCustomColours = false;
    std::array<std::uint32_t, 16> customColours{};

    void Load();
    /// Quietly does nothing where the file cannot be written.
    void Save() const;
};

} // namespace lumafold
