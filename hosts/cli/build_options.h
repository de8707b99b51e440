// The words after "lumafold build", "lumafold sheet" and "lumafold settings": pictures, what fills the gaps,
// settings, and where the result goes.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "hosts/common/memory_list.h"
#include "settings/settings.h"

namespace lumafold {

/// Why words were not taken.
struct WordsError {
    std::string text; ///< one line
    int status = 2;   ///< 2 for a mistake in the words, 1 for a file they name that cannot be read
};

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
    bool estimate = false;                    ///< measure the file and write none
    std::optional<std::uint64_t> memoryLimit; ///< in bytes
    bool quiet = false;
    std::vector<std::string> warnings; ///< one line each
};

/// False with `error`. --transition, --pause and --delay apply to the pictures after them; where none was
/// given, the settings do. What a --config file holds comes before all other words, wherever they stand.
bool ParseBuild(std::span<const std::string> words, BuildOptions& options, WordsError& error);

struct SheetOptions {
    std::array<std::string, 2> images;
    std::optional<std::int32_t> transition; ///< none for a row of each
    PluginSettings settings;
    std::string output;
    bool quiet = false;
    std::vector<std::string> warnings;
};

/// False with `error`.
bool ParseSheet(std::span<const std::string> words, SheetOptions& options, WordsError& error);

struct SettingsOptions {
    PluginSettings settings;
    std::string write; ///< the file to write them to, "" for none
    bool json = false;
    std::vector<std::string> warnings;
};

/// False with `error`.
bool ParseSettings(std::span<const std::string> words, SettingsOptions& options, WordsError& error);

/// "2 to 20" as a person reads a setting's range; colours in hexadecimal.
std::string RangeText(const SettingDescriptor& setting);
/// A setting's value in its own notation.
std::string ValueText(const SettingDescriptor& setting, std::uint32_t value);

extern const char kBuildHelp[];
extern const char kSheetHelp[];
extern const char kSettingsHelp[];

} // namespace lumafold
