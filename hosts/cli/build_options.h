// The words after "lumafold build", "lumafold sheet" and "lumafold settings": pictures, what fills the gaps,
// settings, and where the result goes.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "codecs/resize.h"
#include "hosts/cli/command_words.h"
#include "hosts/cli/output_kind.h"
#include "hosts/cli/progress.h"
#include "hosts/common/memory_list.h"
#include "settings/settings.h"

namespace lumafold {

extern const CommandSummary kBuildCommand, kSheetCommand, kSettingsCommand;

struct ImageArgument {
    std::string path;
    GapValues gap; ///< how it leads to the next
};

/// In which order the pictures are shown.
enum class PictureOrder { AsNamed, Reverse };

/// How often the whole is played, and what comes after its last picture.
struct Plays {
    std::uint32_t times = 0; ///< 0 for ever
    bool endsOnLast = false; ///< nothing leads from the last picture back to the first
};

enum class DelayRule { AtLeastTwoHundredths, Exact };

struct BuildOptions {
    std::vector<ImageArgument> images;
    PictureOrder order = PictureOrder::AsNamed;
    bool pingPong = false; ///< back again over the pictures between
    Plays plays;
    SizeRequest size; ///< of each picture; its matte is the settings'
    DelayRule delays = DelayRule::AtLeastTwoHundredths;
    GapValues defaults{}; ///< the last values in force, which stand for the dialog's
    PluginSettings settings;
    bool supercompressAsked = false; ///< it is more than the setting's default
    bool paletteAsked = false;       ///< so is a palette
    std::string output; ///< "" for none, where nothing is to be written; "-" for the standard output
    std::optional<OutputKind> format; ///< none where the output's name tells
    std::optional<int> quality;       ///< of a WebP, 0 to 100; without one it keeps every colour
    std::optional<int> effort;        ///< at packing, 1 to 12
    std::string sheet;                ///< "" for none
    bool testBuild = false;
    bool estimate = false;                    ///< measure the file and write none
    std::optional<std::uint64_t> memoryLimit; ///< in bytes
    std::optional<std::uint32_t> jobs;        ///< none for as many as there are processors
    Talk talk = Talk::Usual;
    bool json = false;
    std::vector<std::string> alsoRead; ///< files beside the pictures: their lists, and the settings
    std::vector<std::string> warnings; ///< one line each
};

/// --transition, --pause and --delay apply to the pictures after them; where none was given, the settings do.
/// What a --config file holds comes before all other words, wherever they stand. Lists of pictures and a
/// settings file are read here. Throws Failure and Answer, as the others do.
BuildOptions ParseBuild(std::span<const std::string> words, std::istream& standardInput);

struct SheetOptions {
    std::vector<std::string> images;        ///< two
    std::optional<std::int32_t> transition; ///< none for a row of each
    PluginSettings settings;
    std::string output;
    std::optional<std::uint64_t> memoryLimit; ///< in bytes
    Talk talk = Talk::Usual;
    std::vector<std::string> warnings;
};

SheetOptions ParseSheet(std::span<const std::string> words);

struct SettingsOptions {
    PluginSettings settings;
    std::string write; ///< the file to write them to, "" for none
    bool json = false;
    std::vector<std::string> warnings;
};

SettingsOptions ParseSettings(std::span<const std::string> words);

} // namespace lumafold
