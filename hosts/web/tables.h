// What the page builds its controls from, as JSON: settings, transitions and kinds of file; and settings from
// and to the form of the plug-in's settings file.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "settings/settings.h"

namespace lumafold {

/// {"version", "settings": [...], "transitions": [...], "kinds": [...]}.
std::string TablesJson();

/// The settings that an object of keys and numbers names, over the defaults. Unknown keys are passed over.
PluginSettings SettingsFromJson(const nlohmann::json& values);
nlohmann::json SettingsToJson(const PluginSettings& settings);

/// The settings as the plug-in's file has them; "" when there is no memory for it.
std::string SettingsFileText(const PluginSettings& settings);
/// What a settings file says, over the defaults.
PluginSettings SettingsFromFileText(const std::string& text);

} // namespace lumafold
