#include "hosts/cli/listings.h"

#include <iomanip>

#include "hosts/cli/build_options.h"
#include "transitions/table.h"

namespace lumafold {

void ListTransitions(std::ostream& out) {
    out << "row  name                                settings it reads\n";
    for (int row = 0; row < kTransitionCount; ++row) {
        const std::string_view settings = TransitionSettings(row);
        out << std::right << std::setw(3) << row << "  " << std::left << std::setw(36)
            << TransitionTable[row].name << (settings.empty() ? "-" : settings) << '\n';
    }
}

void ListSettings(std::ostream& out) {
    out << "key                              default   range                 meaning\n";
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        out << std::left << std::setw(33) << setting.key << std::setw(10)
            << ValueText(setting, setting.defaultValue) << std::setw(22) << RangeText(setting)
            << setting.meaning << '\n';
        if (setting.choices[0] == '\0') continue;
        out << "    0 = ";
        int choice = 0;
        for (const char* letter = setting.choices; *letter != '\0'; ++letter) {
            if (*letter == ';') {
                out << ", " << ++choice << " = ";
            } else {
                out << *letter;
            }
        }
        out << '\n';
    }
}

} // namespace lumafold
