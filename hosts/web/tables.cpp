#include "hosts/web/tables.h"

#include <filesystem>
#include <string_view>

#include "codecs/files.h"
#include "colour/palettes.h"
#include "hosts/web/kinds.h"
#include "lumafold_version.h"
#include "settings/config_file.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

using Json = nlohmann::json;

/// Where the settings' own reader and writer, which know files only, find and leave their text.
std::string SettingsPath() { return (std::filesystem::temp_directory_path() / "lumafold-page.ini").string(); }

/// Without the mark of the letter that chooses the control, and without a colon at its end.
std::string LabelText(const SettingDescriptor& setting) {
    std::string label = setting.label;
    std::erase(label, '&');
    if (label.ends_with(':')) label.pop_back();
    return label;
}

Json SplitAt(std::string_view words, char separator) {
    Json parts = Json::array();
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(separator), words.size());
        if (end > 0) parts.push_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return parts;
}

Json SettingsTable() {
    Json table = Json::array();
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        if (setting.kind == SettingKind::Fixed) continue;
        table.push_back({{"key", setting.key},
                         {"kind", NameOf(setting.kind)},
                         {"default", setting.defaultValue},
                         {"minimum", setting.minimum},
                         {"maximum", setting.maximum},
                         {"label", LabelText(setting)},
                         {"choices", SplitAt(setting.choices, ';')},
                         {"meaning", setting.meaning}});
    }
    return table;
}

Json TransitionsTable() {
    Json table = Json::array();
    for (int row = 0; row < kTransitionCount; ++row) {
        table.push_back({{"name", TransitionTable[static_cast<std::size_t>(row)].name},
                         {"settings", SplitAt(TransitionSettings(row), ' ')}});
    }
    return table;
}

Json KindsTable() {
    Json table = Json::array();
    for (const OutputKindRow& kind : OutputKinds()) {
        table.push_back({{"id", kind.id},
                         {"name", kind.name},
                         {"suffix", kind.suffix},
                         {"mediaType", kind.mediaType},
                         {"trueColour", kind.colours != Colours::Indexed},
                         {"usuallyTrueColour", kind.colours == Colours::UsuallyTrue},
                         {"lossy", kind.lossy},
                         {"shown", kind.shown}});
    }
    return table;
}

} // namespace

std::string TablesJson() {
    return Json{{"version", LUMAFOLD_VERSION},
                {"settings", SettingsTable()},
                {"transitions", TransitionsTable()},
                {"kinds", KindsTable()}}
        .dump();
}

PluginSettings SettingsFromJson(const nlohmann::json& values) {
    PluginSettings settings;
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        const auto value = values.find(setting.key);
        if (value != values.end() && setting.kind != SettingKind::Fixed) {
            settings.*setting.value = value->get<std::uint32_t>();
        }
    }
    return settings;
}

Json SettingsToJson(const PluginSettings& settings) {
    Json values = Json::object();
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        if (setting.kind != SettingKind::Fixed) values[setting.key] = settings.*setting.value;
    }
    return values;
}

std::string SettingsFileText(const PluginSettings& settings) {
    Array<std::uint8_t> bytes;
    std::string error;
    const std::string path = SettingsPath();
    if (!SaveSettings(path.c_str(), settings) || !ReadWholeFile(path, bytes, error)) return {};
    return {bytes.begin(), bytes.end()};
}

PluginSettings SettingsFromFileText(const std::string& text) {
    PluginSettings settings;
    std::string error;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::string path = SettingsPath();
    if (WriteFileSafely(path, {bytes, text.size()}, error)) LoadSettings(path.c_str(), settings);
    return settings;
}

} // namespace lumafold
