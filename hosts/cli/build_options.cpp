#include "hosts/cli/build_options.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

#include "hosts/cli/names.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

// What --transition, --pause and --delay said so far; the settings fill the rest when all words are read.
struct GapWords {
    std::optional<std::int32_t> transition, pause, delay;
};

constexpr std::string_view kOptions[] = {"-o",           "-q",      "--output", "--quiet",
                                         "--transition", "--pause", "--delay",  "--set",
                                         "--test-build", "--sheet", "--help",   "--version"};

const SettingDescriptor& Descriptor(std::uint32_t PluginSettings::*value) {
    const auto all = SettingDescriptors();
    return *std::find_if(all.begin(), all.end(), [&](const auto& setting) { return setting.value == value; });
}

class Parser {
public:
    Parser(std::span<const std::string> words, BuildOptions& options) : words_(words), options_(options) {}

    bool Run() {
        while (next_ < words_.size()) {
            if (!TakeWord()) return false;
        }
        return Finish();
    }
    const std::string& Error() const { return error_; }

private:
    bool Fail(std::string text) {
        error_ = std::move(text);
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
        if (name == "-q" || name == "--quiet") return TakeSwitch(name, attached, options_.quiet);
        if (name == "--test-build") return TakeSwitch(name, attached, options_.testBuild);
        if (std::find(std::begin(kOptions), std::end(kOptions), name) == std::end(kOptions)) {
            return Fail("unknown option " + name + DidYouMean(name, kOptions));
        }
        if (!attached && next_ == words_.size()) return Fail("option " + name + " needs a value");
        return TakeValue(name, attached ? *attached : words_[next_++]);
    }

    bool TakeSwitch(const std::string& name, const std::optional<std::string>& attached, bool& target) {
        if (attached) return Fail("option " + name + " takes no value");
        return target = true;
    }

    bool TakeValue(const std::string& name, const std::string& value) {
        if (name == "-o" || name == "--output") return TakePath(name, value, options_.output);
        if (name == "--sheet") return TakePath(name, value, options_.sheet);
        if (name == "--set") return TakeSetting(value);
        gapAfterImages_ = name;
        if (name == "--transition") return TakeTransition(value);
        if (name == "--pause") return TakeTime(name, value, &PluginSettings::TransitionPause, gap_.pause);
        return TakeTime(name, value, &PluginSettings::TransitionDelay, gap_.delay);
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

    bool TakeTime(const std::string& name, const std::string& value, std::uint32_t PluginSettings::*setting,
                  std::optional<std::int32_t>& target) {
        const auto number = ParseNumber(value);
        if (!number || value.starts_with('-') || *number > std::numeric_limits<std::int32_t>::max()) {
            return Fail(name + " " + value + ": not a number of hundredths of a second");
        }
        target = static_cast<std::int32_t>(*number);
        WarnWhenOutside(name, *number, Descriptor(setting));
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
        if (setting->kind != SettingKind::Fixed) options_.settings.*setting->value = *number;
        return true;
    }

    void WarnWhenOutside(const std::string& what, std::uint32_t number, const SettingDescriptor& setting) {
        if (number >= setting.minimum && number <= setting.maximum) return;
        options_.warnings.push_back(what + ": " + ValueText(setting, number) + " is outside the range of " +
                                    RangeText(setting) +
                                    (setting.kind == SettingKind::Fixed ? " and stays as it is" : ""));
    }

    bool TakeImage(const std::string& path) {
        if (path.empty()) return Fail("an image without a name");
        options_.images.push_back({path, {}});
        gaps_.push_back(gap_);
        gapAfterImages_.clear();
        return true;
    }

    bool Finish() {
        if (options_.images.empty()) return Fail("no image is named");
        if (options_.output.empty()) return Fail("no output is named, add -o FILE.gif or -o FOLDER/");
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

    std::span<const std::string> words_;
    BuildOptions& options_;
    std::string error_;
    std::size_t next_ = 0;
    bool onlyImages_ = false;
    GapWords gap_;
    std::vector<GapWords> gaps_;
    std::string gapAfterImages_; // the last such option that no image follows
};

} // namespace

bool ParseBuild(std::span<const std::string> words, BuildOptions& options, std::string& error) {
    Parser parser(words, options);
    if (parser.Run()) return true;
    error = parser.Error();
    return false;
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

  -o, --output OUTPUT     FILE.gif, or FOLDER/ for one bitmap a frame and task.json
  --transition NAME|ROW   what leads from the pictures after it to the next ("lumafold transitions" lists them)
  --pause N               how long each picture after it stands still, in hundredths of a second
  --delay N               how long each frame of the transition stands, in hundredths of a second
                          these three may be given again and again; each applies to the pictures after it
  --set KEY=VALUE         any setting, decimal or 0x... ("lumafold settings" lists them); may be repeated
  --test-build            as the dialog's Test button does
  --sheet FILE.png        also a contact sheet of the finished frames
  -q, --quiet             no progress, no remarks
  --                      all words after it are pictures
  --help, --version

Exit status: 0 when everything was written, 1 when the build failed, 2 for a mistake on the command line.
)";

} // namespace lumafold
