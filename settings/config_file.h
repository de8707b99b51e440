// The settings file: "key = number" lines under a short header. Forgiving to read, always written whole.
#pragma once

#include "platform/files.h"
#include "settings/settings.h"

namespace lumafold {

inline constexpr char kConfigFileName[] = "LUMAFOLD.INI";

/// Takes what the file says into `settings` and leaves the rest; false, and nothing taken, when it cannot be
/// read, with `why` where that is wanted. Numbers are taken as they stand: ranges bind dialogs only.
bool LoadSettings(const char* path, PluginSettings& settings, FileError* why = nullptr);

/// Replaces the file, making its folder when that is missing; false when it cannot be written, with `why`
/// where that is wanted, which leaves the old file whole. A read-only file is left alone.
bool SaveSettings(const char* path, const PluginSettings& settings, FileError* why = nullptr);

} // namespace lumafold
