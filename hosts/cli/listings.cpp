#include "hosts/cli/listings.h"

#include <iomanip>

#include "colour/palettes.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/names.h"
#include "transitions/table.h"

namespace lumafold {

void ListTransitions(std::ostream& out) {
    out << "row  name                                settings it reads\n";
    for (int row = 0; row < kTransitionCount; ++row) {
        const std::string_view settings = TransitionSettings(row);
        out << std::right << std::setw(3) << row << "  " << std::left << std::setw(36) << TransitionName(row)
            << (settings.empty() ? "-" : settings) << '\n';
    }
}

void ListSettings(std::ostream& out) {
    out << "key                              default   range                 meaning\n";
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        out << std::left << std::setw(33) << setting.key << std::setw(10)
            << ValueText(setting, setting.defaultValue) << std::setw(22) << RangeText(setting)
            << setting.meaning << '\n';
        const auto choices = ChoicesOf(setting);
        for (std::size_t i = 0; i < choices.size(); ++i)
            out << (i == 0 ? "    " : ", ") << i << " = " << choices[i];
        if (!choices.empty()) out << '\n';
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

} // namespace lumafold
