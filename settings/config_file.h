// The settings file: "key = number" lines under a short header. Forgiving to read, always written whole.
#pragma once

#include "settings/settings.h"

namespace lumafold {

inline constexpr char kConfigFileName[] = "LUMAFOLD.INI";

/// Takes what the file says into `settings` and leaves the rest; false when it cannot be read. Numbers are
/// taken as they stand: ranges bind dialogs only.
bool LoadSettings(const char* path, PluginSettings& settings);

/// Replaces the file, making its folder when that is missing; false when it cannot be written, which leaves
/// the old file whole. A read-only file is left alone.
bool SaveSettings(const char* path, const PluginSettings& settings);

} // namespace lumafold
