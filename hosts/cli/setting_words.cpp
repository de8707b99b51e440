#include "hosts/cli/setting_words.h"

#include <algorithm>

#include "codecs/files.h"
#include "colour/palettes.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/names.h"
#include "settings/config_file.h"

namespace lumafold {

void TakePath(const std::string& option, const std::string& value, std::string& target) {
    if (value.empty()) Mistake("option " + option + " needs the name of a file");
    if (!target.empty()) Mistake("option " + option + " is given twice: " + target + " and " + value);
    target = value;
}

void SettingWords::DescribeAll(CommandWords& words) {
    words.Value("--config", "FILE",
                "settings from a file, as the plug-in keeps them; other options come after it",
                [this](const std::string& value) { TakePath("--config", value, config_); });
    words.Value("--set", "KEY=VALUE",
                "any setting, decimal or 0x... (\"lumafold settings\" lists them); may be repeated",
                [this](const std::string& value) { TakeSetting(value); });
}

void SettingWords::DescribeMatte(CommandWords& words) {
    words.Value("--matte", "R,G,B|'#RRGGBB'", "the colour round smaller pictures and behind clear ones",
                [this](const std::string& value) { TakeMatte(value); });
}

void SettingWords::DescribeColours(CommandWords& words) {
    const auto sets = [&](const char* name, const char* meaning, std::uint32_t PluginSettings::*setting,
                          std::uint32_t value) {
        words.Switch(name, meaning, [=, this] { Set(setting, value); });
    };
    sets("--custom-palette", "compute the best palette for these very frames",
         &PluginSettings::TransitionCustompalette, 1);
    sets("--no-custom-palette", "take the fixed palette", &PluginSettings::TransitionCustompalette, 0);
    words.Value("--palette", "NAME|0..8",
                "a fixed palette instead of a computed one (\"lumafold palettes\" lists them)",
                [this](const std::string& value) { TakePalette(value); });
    sets("--dither", "spread the error of each colour over its neighbours", &PluginSettings::TransitionDither,
         1);
    sets("--no-dither", "take the nearest colour", &PluginSettings::TransitionDither, 0);
    sets(
        "--true-colour",
        "24 bits a pixel where the output can hold them; without supercompression, unless that is asked for: "
        "changed black pixels would let the frame before shine through",
        &PluginSettings::TransitionTruecolour, 1);
    sets("--supercompress", "mark pixels that did not change as transparent", &PluginSettings::Supercompress,
         1);
    sets("--no-supercompress", "leave them as they are", &PluginSettings::Supercompress, 0);
}

void SettingWords::Set(std::uint32_t PluginSettings::*setting, std::uint32_t value) {
    assignments_.emplace_back(setting, value);
    if (setting == &PluginSettings::Supercompress) asksForSupercompression_ = value != 0;
    if (setting == &PluginSettings::TransitionTruecolour) asksForPalette_ = value == 0;
    if (setting == &PluginSettings::TransitionPalette || setting == &PluginSettings::TransitionCustompalette)
        asksForPalette_ = true;
}

PluginSettings SettingWords::Settle() const {
    PluginSettings settings;
    FileError why = 0;
    if (!config_.empty() && !LoadSettings(config_.c_str(), settings, &why))
        throw Failure(kFailed, "--config " + config_ + ": " + FileErrorText(why));
    for (const auto& [setting, value] : assignments_)
        settings.*setting = value;
    return settings;
}

void SettingWords::TakeMatte(const std::string& value) {
    const auto colour = ParseColour(value);
    if (!colour) Mistake("--matte " + value + ": write a colour as R,G,B or '#RRGGBB'");
    Set(&PluginSettings::TransitionMattcolour, *colour);
}

// Who names a palette wants to see it, and not one that is computed.
void SettingWords::TakePalette(const std::string& value) {
    const auto number = FindPalette(value);
    if (!number && ParseNumber(value)) {
        Mistake("--palette " + value + ": there is no such palette, they are 0 to " +
                std::to_string(kFixedPaletteCount - 1));
    }
    if (!number) Mistake("--palette " + value + ": no palette has this name" + DidYouMeanPalette(value));
    Set(&PluginSettings::TransitionPalette, *number);
    Set(&PluginSettings::TransitionCustompalette, 0);
}

void SettingWords::TakeSetting(const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) Mistake("--set " + assignment + ": write it as KEY=VALUE");
    const std::string key = assignment.substr(0, equals), text = assignment.substr(equals + 1);
    const auto all = SettingDescriptors();
    const auto setting =
        std::find_if(all.begin(), all.end(), [&](const auto& row) { return row.key == key; });
    if (setting == all.end()) Mistake("--set " + assignment + ": no setting " + key + DidYouMeanKey(key));
    const auto number = ParseNumber(text);
    if (!number) Mistake("--set " + assignment + ": " + text + " is no whole number from 0 to 4294967295");
    WarnWhenOutside("--set " + key, *number, *setting);
    // As with a settings file, where these two are written and never taken.
    if (setting->kind != SettingKind::Fixed) Set(setting->value, *number);
}

void SettingWords::WarnWhenOutside(const std::string& what, std::uint32_t number,
                                   const SettingDescriptor& setting) {
    if (number >= setting.minimum && number <= setting.maximum) return;
    warnings_.push_back(what + ": " + ValueText(setting, number) + " is outside the range of " +
                        RangeText(setting) +
                        (setting.kind == SettingKind::Fixed ? " and stays as it is" : ""));
}

} // namespace lumafold
