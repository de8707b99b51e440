#include "hosts/cli/listings.h"

#include <iomanip>

#include <nlohmann/json.hpp>

#include "codecs/files.h"
#include "colour/palettes.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/names.h"
#include "settings/config_file.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

/// Without the mark of the letter that chooses the control.
std::string LabelText(const SettingDescriptor& setting) {
    std::string label = setting.label;
    std::erase(label, '&');
    return label;
}

void TableOfSettings(const PluginSettings& settings, std::ostream& out) {
    out << "key                              value       default   range                 kind    "
           "label                      meaning\n";
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        const std::string label = LabelText(setting);
        out << std::left << std::setw(33) << setting.key << std::setw(12)
            << ValueText(setting, settings.*setting.value) << std::setw(10)
            << ValueText(setting, setting.defaultValue) << std::setw(22) << RangeText(setting) << std::setw(8)
            << NameOf(setting.kind) << std::setw(27) << (label.empty() ? "-" : label) << setting.meaning
            << '\n';
        const auto choices = ChoicesOf(setting);
        for (std::size_t i = 0; i < choices.size(); ++i)
            out << (i == 0 ? "    " : ", ") << i << " = " << choices[i];
        if (!choices.empty()) out << '\n';
    }
}

void JsonOfSettings(const PluginSettings& settings, std::ostream& out) {
    auto all = nlohmann::ordered_json::array();
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        nlohmann::ordered_json row = {{"key", setting.key},
                                      {"value", settings.*setting.value},
                                      {"default", setting.defaultValue},
                                      {"minimum", setting.minimum},
                                      {"maximum", setting.maximum},
                                      {"kind", NameOf(setting.kind)},
                                      {"label", LabelText(setting)},
                                      {"meaning", setting.meaning}};
        if (const auto choices = ChoicesOf(setting); !choices.empty()) row["choices"] = choices;
        all.push_back(std::move(row));
    }
    out << all.dump(2) << '\n';
}

} // namespace

void ListTransitions(std::ostream& out) {
    out << "row  name                                settings it reads\n";
    for (int row = 0; row < kTransitionCount; ++row) {
        const std::string_view settings = TransitionSettings(row);
        out << std::right << std::setw(3) << row << "  " << std::left << std::setw(36) << TransitionName(row)
            << (settings.empty() ? "-" : settings) << '\n';
    }
}

void ListPalettes(std::ostream& out) {
    out << "number  name                      colours  bits\n";
    int number = 0;
    for (const std::string_view name : ChoicesOf(DescriptorOf(&PluginSettings::TransitionPalette))) {
        int bits = 0;
        const int colours = BuildFixedPalette(nullptr, &bits, number);
        out << std::right << std::setw(6) << number++ << "  " << std::left << std::setw(26) << name
            << std::right << std::setw(7) << colours << std::setw(6) << bits << '\n';
    }
}

int RunSettings(std::span<const std::string> words, const Console& console) {
    const SettingsOptions options = ParseSettings(words);
    for (const std::string& warning : options.warnings)
        console.Warn(warning);
    FileError why = 0;
    if (!options.write.empty() && !SaveSettings(options.write.c_str(), options.settings, &why))
        throw Failure(kFailed, "--write " + options.write + ": " + FileErrorText(why));
    (options.json ? JsonOfSettings : TableOfSettings)(options.settings, console.out);
    return 0;
}

} // namespace lumafold
