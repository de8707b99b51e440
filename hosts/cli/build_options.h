// The words after "lumafold build" and "lumafold sheet": pictures, what fills the gaps, settings, and where
// the result goes.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "hosts/cli/memory_list.h"
#include "settings/settings.h"

namespace lumafold {

struct ImageArgument {
    std::string path;
    GapValues gap; ///< how it leads to the next
};

struct BuildOptions {
    std::vector<ImageArgument> images;
    GapValues defaults{}; ///< the last values in force, which stand for the dialog's
    PluginSettings settings;
    bool supercompressAsked = false; ///< it is more than the setting's default
    std::string output;              ///< "" for none, where nothing is to be written
    std::string sheet;               ///< "" for none
    bool testBuild = false;
    bool estimate = false; ///< measure the file and write none
    bool quiet = false;
    std::vector<std::string> warnings; ///< one line each
};

/// False with `error` in one line. --transition, --pause and --delay apply to the pictures after them; where
/// none was given, the settings' defaults do, wherever a --set stands.
bool ParseBuild(std::span<const std::string> words, BuildOptions& options, std::string& error);

struct SheetOptions {
    std::array<std::string, 2> images;
    std::optional<std::int32_t> transition; ///< none for a row of each
    PluginSettings settings;
    std::string output;
    bool quiet = false;
    std::vector<std::string> warnings;
};

/// False with `error` in one line.
bool ParseSheet(std::span<const std::string> words, SheetOptions& options, std::string& error);

/// "2 to 20" as a person reads a setting's range; colours in hexadecimal.
std::string RangeText(const SettingDescriptor& setting);
/// A setting's value in its own notation.
std::string ValueText(const SettingDescriptor& setting, std::uint32_t value);

extern const char kBuildHelp[];
extern const char kSheetHelp[];

} // namespace lumafold
