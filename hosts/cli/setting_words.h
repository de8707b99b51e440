// Options that stand for settings, and the settings that come of them: defaults, then a settings file
// wherever it is named, then what the other words say in their order.
#pragma once

#include <utility>
#include <vector>

#include "hosts/cli/command_words.h"
#include "settings/settings.h"

namespace lumafold {

class SettingWords {
public:
    /// --config and --set.
    void DescribeAll(CommandWords& words);
    void DescribeMatte(CommandWords& words);
    /// Palette, dither, true colour, supercompression.
    void DescribeColours(CommandWords& words);

    void Set(std::uint32_t PluginSettings::*setting, std::uint32_t value);
    void WarnWhenOutside(const std::string& what, std::uint32_t number, const SettingDescriptor& setting);

    /// Throws Failure when the settings file cannot be read.
    PluginSettings Settle() const;
    /// "" for none.
    const std::string& File() const { return config_; }
    /// One line each.
    std::vector<std::string>& Warnings() { return warnings_; }
    /// Whether a word, and not only the default, says so.
    bool AskedForSupercompression() const { return asksForSupercompression_; }
    bool AskedForPalette() const { return asksForPalette_; }

private:
    void TakeSetting(const std::string& assignment);
    void TakePalette(const std::string& value);
    void TakeMatte(const std::string& value);

    std::string config_;
    std::vector<std::pair<std::uint32_t PluginSettings::*, std::uint32_t>> assignments_;
    std::vector<std::string> warnings_;
    bool asksForSupercompression_ = false, asksForPalette_ = false;
};

/// Puts the name of a file into `target`; a mistake for no name, and for a second one. `option` is for the
/// message.
void TakePath(const std::string& option, const std::string& value, std::string& target);

} // namespace lumafold
