#include "hosts/cli/build_options.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

#include "codecs/files.h"
#include "colour/palettes.h"
#include "hosts/cli/names.h"
#include "settings/config_file.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

// What --transition, --pause and --delay said so far; the settings fill the rest when all words are read.
struct GapWords {
    std::optional<std::int32_t> transition, pause, delay;
};

enum class Command : unsigned { Build = 1, Sheet = 2, Settings = 4 };
enum class Takes { Value, Nothing };
/// Sets of commands.
enum class KnownTo : unsigned { Build = 1, Pictures = 1 | 2, Settings = 4, All = 1 | 2 | 4 };

/// An option; those that stand for a setting put `value` into it.
struct OptionRow {
    std::string_view name;
    Takes takes;
    KnownTo knownTo;
    std::uint32_t PluginSettings::*setting = nullptr;
    std::uint32_t value = 0;
};

constexpr OptionRow kOptions[] = {
    {"-o", Takes::Value, KnownTo::Pictures},
    {"--output", Takes::Value, KnownTo::Pictures},
    {"--transition", Takes::Value, KnownTo::Pictures},
    {"--pause", Takes::Value, KnownTo::Build},
    {"--delay", Takes::Value, KnownTo::Build},
    {"--config", Takes::Value, KnownTo::All},
    {"--set", Takes::Value, KnownTo::All},
    {"--matte", Takes::Value, KnownTo::Pictures},
    {"--palette", Takes::Value, KnownTo::Build},
    {"--custom-palette", Takes::Nothing, KnownTo::Build, &PluginSettings::TransitionCustompalette, 1},
    {"--no-custom-palette", Takes::Nothing, KnownTo::Build, &PluginSettings::TransitionCustompalette, 0},
    {"--dither", Takes::Nothing, KnownTo::Build, &PluginSettings::TransitionDither, 1},
    {"--no-dither", Takes::Nothing, KnownTo::Build, &PluginSettings::TransitionDither, 0},
    {"--true-colour", Takes::Nothing, KnownTo::Build, &PluginSettings::TransitionTruecolour, 1},
    {"--supercompress", Takes::Nothing, KnownTo::Build, &PluginSettings::Supercompress, 1},
    {"--no-supercompress", Takes::Nothing, KnownTo::Build, &PluginSettings::Supercompress, 0},
    {"--test-build", Takes::Nothing, KnownTo::Build},
    {"--estimate", Takes::Nothing, KnownTo::Build},
    {"--memory-limit", Takes::Value, KnownTo::Build},
    {"--sheet", Takes::Value, KnownTo::Build},
    {"--json", Takes::Nothing, KnownTo::Settings},
    {"--write", Takes::Value, KnownTo::Settings},
    {"-q", Takes::Nothing, KnownTo::Pictures},
    {"--quiet", Takes::Nothing, KnownTo::Pictures},
    {"--help", Takes::Nothing, KnownTo::All},
    {"--version", Takes::Nothing, KnownTo::All},
};

bool Knows(Command command, const OptionRow& option) {
    return (static_cast<unsigned>(option.knownTo) & static_cast<unsigned>(command)) != 0;
}

std::string DidYouMeanOption(Command command, const std::string& word) {
    std::vector<std::string_view> names;
    for (const OptionRow& option : kOptions) {
        if (Knows(command, option)) names.push_back(option.name);
    }
    return DidYouMean(word, names);
}

class Parser {
public:
    Parser(Command command, std::span<const std::string> words, BuildOptions& options)
        : command_(command), words_(words), options_(options) {}

    bool Run() {
        while (next_ < words_.size()) {
            if (!TakeWord()) return false;
        }
        if (!SettleSettings()) return false;
        if (command_ == Command::Settings) return true;
        return command_ == Command::Build ? FinishBuild() : FinishSheet();
    }
    const WordsError& Error() const { return error_; }
    /// What --transition said last.
    std::optional<std::int32_t> Transition() const { return gap_.transition; }
    bool Json() const { return json_; }

private:
    bool Fail(std::string text) {
        error_.text = std::move(text);
        return false;
    }

    bool TakeWord() {
        const std::string& word = words_[next_++];
        if (onlyImages_ || word.size() < 2 || word[0] != '-') return TakeImage(word);
        if (word == "--") return onlyImages_ = true;
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const auto attached =
            equals == std::string::npos ? std::nullopt : std::optional(word.substr(equals + 1));
        const auto option = std::find_if(std::begin(kOptions), std::end(kOptions), [&](const auto& row) {
            return row.name == name && Knows(command_, row);
        });
        if (option == std::end(kOptions)) {
            return Fail("unknown option " + name + DidYouMeanOption(command_, name));
        }
        if (option->takes == Takes::Nothing) {
            return attached ? Fail("option " + name + " takes no value") : TakeSwitch(*option);
        }
        if (!attached && next_ == words_.size()) return Fail("option " + name + " needs a value");
        return TakeValue(name, attached ? *attached : words_[next_++]);
    }

    bool TakeSwitch(const OptionRow& option) {
        if (option.setting != nullptr) {
            Set(option.setting, option.value);
        } else if (option.name == "--test-build") {
            options_.testBuild = true;
        } else if (option.name == "--estimate") {
            options_.estimate = true;
        } else if (option.name == "--json") {
            json_ = true;
        } else {
            options_.quiet = true;
        }
        return true;
    }

    bool TakeValue(const std::string& name, const std::string& value) {
        if (name == "-o" || name == "--output" || name == "--write") {
            return TakePath(name, value, options_.output);
        }
        if (name == "--config") return TakePath(name, value, config_);
        if (name == "--sheet") return TakePath(name, value, options_.sheet);
        if (name == "--memory-limit") return TakeMemoryLimit(value);
        if (name == "--set") return TakeSetting(value);
        if (name == "--matte") return TakeMatte(value);
        if (name == "--palette") return TakePalette(value);
        gapAfterImages_ = name;
        if (name == "--transition") return TakeTransition(value);
        if (name == "--pause") return TakeTime(name, value, &PluginSettings::TransitionPause, gap_.pause);
        return TakeTime(name, value, &PluginSettings::TransitionDelay, gap_.delay);
    }

    void Set(std::uint32_t PluginSettings::*setting, std::uint32_t value) {
        assignments_.emplace_back(setting, value);
        if (setting == &PluginSettings::Supercompress) options_.supercompressAsked = value != 0;
    }

    bool SettleSettings() {
        FileError why = 0;
        if (!config_.empty() && !LoadSettings(config_.c_str(), options_.settings, &why)) {
            error_.status = 1;
            return Fail("--config " + config_ + ": " + FileErrorText(why));
        }
        for (const auto& [setting, value] : assignments_)
            options_.settings.*setting = value;
        return true;
    }

    bool TakePath(const std::string& name, const std::string& value, std::string& target) {
        if (value.empty()) return Fail("option " + name + " needs the name of a file");
        if (!target.empty()) return Fail("option " + name + " is given twice: " + target + " and " + value);
        target = value;
        return true;
    }

    bool TakeTransition(const std::string& value) {
        gap_.transition = FindTransition(value);
        if (gap_.transition) return true;
        if (ParseNumber(value)) {
            return Fail("--transition " + value + ": there is no such row, the table has 0 to " +
                        std::to_string(kTransitionCount - 1));
        }
        return Fail("--transition " + value + ": no transition has this name" + DidYouMeanTransition(value));
    }

    bool TakeMatte(const std::string& value) {
        const auto colour = ParseColour(value);
        if (!colour) return Fail("--matte " + value + ": write a colour as R,G,B or '#RRGGBB'");
        Set(&PluginSettings::TransitionMattcolour, *colour);
        return true;
    }

    // Who names a palette wants to see it, and not one that is computed.
    bool TakePalette(const std::string& value) {
        const auto number = FindPalette(value);
        if (!number && ParseNumber(value)) {
            return Fail("--palette " + value + ": there is no such palette, they are 0 to " +
                        std::to_string(kFixedPaletteCount - 1));
        }
        if (!number) {
            return Fail("--palette " + value + ": no palette has this name" + DidYouMeanPalette(value));
        }
        Set(&PluginSettings::TransitionPalette, *number);
        Set(&PluginSettings::TransitionCustompalette, 0);
        return true;
    }

    bool TakeTime(const std::string& name, const std::string& value, std::uint32_t PluginSettings::*setting,
                  std::optional<std::int32_t>& target) {
        const auto number = ParseNumber(value);
        if (!number || value.starts_with('-') || *number > std::numeric_limits<std::int32_t>::max()) {
            return Fail(name + " " + value + ": not a number of hundredths of a second");
        }
        target = static_cast<std::int32_t>(*number);
        WarnWhenOutside(name, *number, DescriptorOf(setting));
        return true;
    }

    bool TakeMemoryLimit(const std::string& value) {
        const auto number = ParseNumber(value);
        if (!number || value.starts_with('-') || *number == 0) {
            return Fail("--memory-limit " + value + ": not a number of megabytes");
        }
        options_.memoryLimit = std::uint64_t{*number} * 1'000'000;
        return true;
    }

    bool TakeSetting(const std::string& assignment) {
        const std::size_t equals = assignment.find('=');
        if (equals == std::string::npos) return Fail("--set " + assignment + ": write it as KEY=VALUE");
        const std::string key = assignment.substr(0, equals), text = assignment.substr(equals + 1);
        const auto all = SettingDescriptors();
        const auto setting =
            std::find_if(all.begin(), all.end(), [&](const auto& row) { return row.key == key; });
        if (setting == all.end())
            return Fail("--set " + assignment + ": no setting " + key + DidYouMeanKey(key));
        const auto number = ParseNumber(text);
        if (!number) return Fail("--set " + assignment + ": " + text + " is no 32-bit number");
        WarnWhenOutside("--set " + key, *number, *setting);
        // As with a settings file, where these two are written and never taken.
        if (setting->kind != SettingKind::Fixed) Set(setting->value, *number);
        return true;
    }

    void WarnWhenOutside(const std::string& what, std::uint32_t number, const SettingDescriptor& setting) {
        if (number >= setting.minimum && number <= setting.maximum) return;
        options_.warnings.push_back(what + ": " + ValueText(setting, number) + " is outside the range of " +
                                    RangeText(setting) +
                                    (setting.kind == SettingKind::Fixed ? " and stays as it is" : ""));
    }

    bool TakeImage(const std::string& path) {
        if (command_ == Command::Settings) return Fail("settings takes no words after it: " + path);
        if (path.empty()) return Fail("an image without a name");
        options_.images.push_back({path, {}});
        gaps_.push_back(gap_);
        gapAfterImages_.clear();
        return true;
    }

    bool FinishSheet() {
        if (options_.images.size() != 2) return Fail("a sheet shows the way between two images, name both");
        return options_.output.empty() ? Fail("no output is named, add -o FILE.png") : true;
    }

    bool FinishBuild() {
        if (options_.images.empty()) return Fail("no image is named");
        if (options_.estimate && !options_.sheet.empty()) {
            return Fail("--estimate writes nothing, so it does not go with --sheet");
        }
        if (options_.output.empty() && !options_.estimate) {
            return Fail("no output is named, add -o FILE.gif, .png or .mng, or -o FOLDER/");
        }
        for (std::size_t i = 0; i < gaps_.size(); ++i)
            options_.images[i].gap = Filled(gaps_[i]);
        options_.defaults = Filled(gap_);
        // With one image they fill the gap that leads back to it; else they were meant to stand in front.
        if (!gapAfterImages_.empty() && options_.images.size() > 1) {
            options_.warnings.push_back(gapAfterImages_ + " stands after the last image and changes nothing");
        }
        return true;
    }

    GapValues Filled(const GapWords& words) const {
        // A row that the table has not is what the dialog shows as nothing selected, which counts as the
        // first.
        const std::uint32_t type = options_.settings.TransitionType;
        const std::int32_t usual = type < kTransitionCount ? static_cast<std::int32_t>(type) : 0;
        return {words.transition.value_or(usual),
                words.pause.value_or(static_cast<std::int32_t>(options_.settings.TransitionPause)),
                words.delay.value_or(static_cast<std::int32_t>(options_.settings.TransitionDelay))};
    }

    const Command command_;
    std::span<const std::string> words_;
    BuildOptions& options_;
    WordsError error_;
    std::size_t next_ = 0;
    bool onlyImages_ = false;
    bool json_ = false;
    std::string config_;
    std::vector<std::pair<std::uint32_t PluginSettings::*, std::uint32_t>> assignments_;
    GapWords gap_;
    std::vector<GapWords> gaps_;
    std::string gapAfterImages_; // the last such option that no image follows
};

} // namespace

bool ParseBuild(std::span<const std::string> words, BuildOptions& options, WordsError& error) {
    Parser parser(Command::Build, words, options);
    if (parser.Run()) return true;
    error = parser.Error();
    return false;
}

bool ParseSheet(std::span<const std::string> words, SheetOptions& options, WordsError& error) {
    BuildOptions read;
    Parser parser(Command::Sheet, words, read);
    if (!parser.Run()) {
        error = parser.Error();
        return false;
    }
    options = {{read.images[0].path, read.images[1].path},
               parser.Transition(),
               read.settings,
               read.output,
               read.quiet,
               read.warnings};
    return true;
}

bool ParseSettings(std::span<const std::string> words, SettingsOptions& options, WordsError& error) {
    BuildOptions read;
    Parser parser(Command::Settings, words, read);
    if (!parser.Run()) {
        error = parser.Error();
        return false;
    }
    options = {read.settings, read.output, parser.Json(), read.warnings};
    return true;
}

std::string ValueText(const SettingDescriptor& setting, std::uint32_t value) {
    if (setting.kind != SettingKind::Colour) return std::to_string(value);
    char text[16];
    std::snprintf(text, sizeof(text), "0x%06X", static_cast<unsigned>(value));
    return text;
}

std::string RangeText(const SettingDescriptor& setting) {
    if (setting.kind == SettingKind::Fixed) return "always " + std::to_string(setting.minimum);
    return ValueText(setting, setting.minimum) + " to " + ValueText(setting, setting.maximum);
}

const char kBuildHelp[] =
    R"(usage: lumafold build [options] IMAGE... -o OUTPUT

Turns two or more PNG, JPEG, GIF or BMP pictures into a looping animation. One picture alone fades to the
matte colour and back.

  -o, --output OUTPUT     FILE.gif, FILE.png (animated), FILE.mng, or FOLDER/ for one bitmap a frame and
                          task.json
  --transition NAME|ROW   what leads from the pictures after it to the next ("lumafold transitions" lists them)
  --pause N               how long each picture after it stands still, in hundredths of a second
  --delay N               how long each frame of the transition stands, in hundredths of a second;
                          these three may be given again and again; each applies to the pictures after it
  --custom-palette        compute the best palette; --no-custom-palette takes the fixed one
  --palette NAME|0..8     a fixed palette instead of a computed one ("lumafold palettes" lists them)
  --dither, --no-dither   spread the error of each colour over its neighbours, or take the nearest colour
  --true-colour           24 bits a pixel where the output can hold them; without supercompression, unless
                          that is asked for: changed black pixels would let the frame before shine through
  --supercompress, --no-supercompress
                          mark pixels that did not change as transparent
  --matte R,G,B|'#RRGGBB' the colour round smaller pictures and behind clear ones
  --config FILE           settings from a file, as the plug-in keeps them; other options come after it
  --set KEY=VALUE         any setting, decimal or 0x... ("lumafold settings" lists them); may be repeated
  --estimate              build all of it and say how large the file would be, but write nothing; -o is then
                          needed for its kind alone, which is .gif without it
  --memory-limit MB       build nothing that needs more memory than this; without it, half of the machine's
  --test-build            as the dialog's Test button does
  --sheet FILE.png        also a contact sheet of the finished frames
  -q, --quiet             no progress, no remarks
  --                      all words after it are pictures
  --help, --version

Of options that say different things about a setting the last one holds.
Exit status: 0 when everything was written, 1 when the build failed, 2 for a mistake on the command line.
)";

const char kSheetHelp[] =
    R"(usage: lumafold sheet [options] IMAGE IMAGE -o FILE.png

Draws frames of the way from the first picture to the second, in true colour: a row for each of the 33
transitions, of pictures shrunk to 160x120 before; or, of one transition, up to 48 frames of the pictures as
they are (shrunk before, too, where the frames would be very many or large).

  -o, --output FILE.png   where the sheet goes
  --transition NAME|ROW   the one to show ("lumafold transitions" lists them)
  --matte R,G,B|'#RRGGBB' the colour round smaller pictures and behind clear ones
  --config FILE           settings from a file, as the plug-in keeps them; other options come after it
  --set KEY=VALUE         any setting, decimal or 0x... ("lumafold settings" lists them); may be repeated
  -q, --quiet             no progress, no remarks
  --                      all words after it are pictures
  --help, --version
)";

const char kSettingsHelp[] =
    R"(usage: lumafold settings [options]

Shows every setting: key, value, default, range, kind, label in the dialogs, meaning. The values are the
defaults, unless the options say others.

  --config FILE           values from a file, as the plug-in keeps them
  --set KEY=VALUE         a value after those, decimal or 0x...; may be repeated
  --json                  as a JSON array instead of a table
  --write FILE            also write the values to a file for --config or the plug-in
  --help, --version
)";

} // namespace lumafold
