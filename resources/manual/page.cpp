#include "resources/manual/page.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <map>
#include <utility>

#include "lumafold_version.h"
#include "resources/manual/text.h"
#include "resources/texts/strings.h"
#include "settings/settings.h"
#include "transitions/table.h"

namespace lumafold::manual {
namespace {

// Where the build puts the animations, beside the page.
constexpr char kPictures[] = "LUMAFOLD";
// A usual size of web animations: some transitions have more frames on larger pictures.
constexpr std::int32_t kUsualWidth = 320, kUsualHeight = 240;

struct Place {
    const char* key;
    int column, line;
};
constexpr Place kPlaces[] = {
#define LUMAFOLD_SETTING(key, kind, value, minimum, maximum, start, label, dialog, id, column, line,         \
                         choices, meaning)                                                                   \
    {#key, column, line},
#include "settings/descriptors.def"
};

struct Group {
    const char* caption;
    int column, line, lines;
};
constexpr Group kGroups[] = {
#define LUMAFOLD_GROUP(caption, column, line, lines) {caption, column, line, lines},
#include "settings/descriptors.def"
};

const SettingDescriptor& DescriptorOf(std::string_view key) {
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        if (setting.key == key) return setting;
    }
    throw Fault("no setting is called " + std::string(key));
}

std::string AnchorOf(const SettingDescriptor& setting) { return std::string("S_") + setting.key; }
std::string AnchorOf(const Group& group) { return "G_" + AnchorName(group.caption); }
std::string AnchorOfRow(int row) {
    return "T_" + AnchorName(TransitionTable[static_cast<std::size_t>(row)].name);
}

std::string Link(const std::string& anchor, std::string_view text) {
    return Fill(R"(<a href="#{{anchor}}">{{text}}</a>)", {{"anchor", anchor}, {"text", Escaped(text)}});
}

std::string LabelOf(const SettingDescriptor& setting) {
    const std::string caption = Caption(setting.label);
    return Escaped(caption.empty() ? setting.key : caption);
}

std::string ColourText(std::uint32_t colour) {
    const std::uint32_t red = colour & 0xFF, green = colour >> 8 & 0xFF, blue = colour >> 16 & 0xFF;
    char text[128];
    std::snprintf(text, sizeof text,
                  "<span class=\"swatch\" style=\"background:#%02X%02X%02X\">&nbsp;</span>%u, %u, %u",
                  static_cast<unsigned>(red), static_cast<unsigned>(green), static_cast<unsigned>(blue),
                  static_cast<unsigned>(red), static_cast<unsigned>(green), static_cast<unsigned>(blue));
    return text;
}

/// The names to choose from, a setting's own or those of the table of transitions.
std::vector<std::string> ChoicesOf(const SettingDescriptor& setting) {
    if (setting.value != &PluginSettings::TransitionType) return Split(setting.choices, ';');
    std::vector<std::string> names(TransitionTable.size());
    std::transform(TransitionTable.begin(), TransitionTable.end(), names.begin(),
                   [](const TransitionRow& row) { return row.name; });
    return names;
}

std::string RangeText(const SettingDescriptor& setting) {
    switch (setting.kind) {
    case SettingKind::Switch:
        return "on or off";
    case SettingKind::Number:
        return std::to_string(setting.minimum) + " to " + std::to_string(setting.maximum);
    case SettingKind::Colour:
        return "any colour";
    case SettingKind::Fixed:
        return "always " + std::to_string(setting.minimum);
    case SettingKind::Choice:
        break;
    }
    const std::vector<std::string> choices = ChoicesOf(setting);
    constexpr std::size_t kFew = 3;
    if (choices.size() > kFew) return Escaped(choices.front()) + " to " + Escaped(choices.back());
    std::string text = choices.front();
    for (std::size_t i = 1; i < choices.size(); ++i)
        text += (i + 1 < choices.size() ? ", " : " or ") + choices[i];
    return Escaped(text);
}

std::string DefaultText(const SettingDescriptor& setting) {
    switch (setting.kind) {
    case SettingKind::Switch:
        return setting.defaultValue != 0 ? "on" : "off";
    case SettingKind::Colour:
        return ColourText(setting.defaultValue);
    case SettingKind::Choice:
        return Escaped(ChoicesOf(setting).at(setting.defaultValue));
    case SettingKind::Number:
    case SettingKind::Fixed:
        break;
    }
    return std::to_string(setting.defaultValue);
}

std::string Sentence(std::string text) {
    if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

std::vector<const SettingDescriptor*> SettingsIn(const Group& group) {
    std::map<int, const SettingDescriptor*> byLine;
    for (const Place& place : kPlaces) {
        const bool inside =
            place.column == group.column && place.line > group.line && place.line <= group.line + group.lines;
        const SettingDescriptor& setting = DescriptorOf(place.key);
        if (inside && setting.controlId != 0) byLine[place.line] = &setting;
    }
    std::vector<const SettingDescriptor*> settings(byLine.size());
    std::transform(byLine.begin(), byLine.end(), settings.begin(),
                   [](const auto& line) { return line.second; });
    return settings;
}

/// Whether a table of settings is what links elsewhere lead to.
enum class Anchored { No, Yes };

class Page {
public:
    explicit Page(const std::string& folder) : folder_(folder) {}

    std::string Make() {
        Values values = {
            {"style", Text("style.css")},
            {"logo", std::string(kPictures) + "/logo.gif"},
            {"version", LUMAFOLD_VERSION},
            {"notice", Escaped(LUMAFOLD_NOTICE)},
            {"manual", LUMAFOLD_MANUAL},
            {"transition.count", std::to_string(kTransitionCount)},
            {"transition.index", Index()},
            {"transitions", Transitions()},
            {"groups", Groups()},
            {"palettes", Palettes()},
            {"settings.main", SettingsOf(SettingDialog::Main)},
            {"settings.file", SettingsOf(SettingDialog::Nowhere)},
        };
        AddTexts(values);
        for (const SettingDescriptor& setting : SettingDescriptors()) {
            const std::string key = setting.key;
            values["default." + key] = DefaultText(setting);
            values["maximum." + key] = std::to_string(setting.maximum);
            values["setting." + key] = AnchorOf(setting);
        }
        for (int row = 0; row < kTransitionCount; ++row)
            values[std::string("row.") + TransitionTable[static_cast<std::size_t>(row)].name] =
                AnchorOfRow(row);
        return Fill(Text("manual.html"), values);
    }

private:
    std::string Text(const char* file) const { return ReadText(folder_ + "/" + file); }

    static void AddTexts(Values& values) {
        values.insert({{"text.read", LUMAFOLD_TEXT_READ_ERROR},
                       {"text.memory", LUMAFOLD_TEXT_MEMORY_ERROR},
                       {"text.task", LUMAFOLD_TEXT_TASK_ERROR},
                       {"text.frame", LUMAFOLD_TEXT_FRAME_ERROR},
                       {"text.internal", LUMAFOLD_TEXT_INTERNAL_ERROR},
                       {"text.clipboard", LUMAFOLD_TEXT_CLIPBOARD_ERROR},
                       {"text.help", LUMAFOLD_TEXT_HELP_ERROR},
                       {"label.clipboard", LUMAFOLD_LABEL_CLIPBOARD}});
    }

    std::string Settings(const std::vector<const SettingDescriptor*>& settings, Anchored anchored) const {
        if (settings.empty()) return "";
        std::string rows;
        for (const SettingDescriptor* setting : settings) {
            const std::string anchor = AnchorOf(*setting);
            const std::string label = anchored == Anchored::No
                                          ? Link(anchor, Caption(setting->label))
                                          : Fill(R"(<a name="{{anchor}}" id="{{anchor}}"></a>{{name}})",
                                                 {{"anchor", anchor}, {"name", LabelOf(*setting)}});
            rows += Fill(Text("setting.html"), {{"label", label},
                                                {"key", setting->key},
                                                {"range", RangeText(*setting)},
                                                {"default", DefaultText(*setting)},
                                                {"meaning", Escaped(Sentence(setting->meaning))}});
        }
        return Fill(Text("settings.html"), {{"rows", rows}});
    }

    std::string SettingsOf(SettingDialog dialog) const {
        std::vector<const SettingDescriptor*> settings;
        for (const SettingDescriptor& setting : SettingDescriptors()) {
            if (setting.dialog == dialog) settings.push_back(&setting);
        }
        return Settings(settings, Anchored::Yes);
    }

    /// In the order of the dialog, column by column and each from top to bottom.
    std::string Groups() const {
        std::vector<Group> inOrder(std::begin(kGroups), std::end(kGroups));
        std::sort(inOrder.begin(), inOrder.end(), [](const Group& a, const Group& b) {
            return std::pair(a.column, a.line) < std::pair(b.column, b.line);
        });
        std::string groups;
        for (const Group& group : inOrder) {
            groups += Fill(Text("group.html"), {{"anchor", AnchorOf(group)},
                                                {"caption", Escaped(group.caption)},
                                                {"settings", Settings(SettingsIn(group), Anchored::Yes)}});
        }
        return groups;
    }

    static std::string Index() {
        std::string index;
        for (int row = 0; row < kTransitionCount; ++row) {
            if (row > 0) index += " &middot;\n";
            index += Link(AnchorOfRow(row), TransitionTable[static_cast<std::size_t>(row)].name);
        }
        return index;
    }

    /// Descriptions by display name, from a file that has the name on a line and the text on those below.
    Values Descriptions() const {
        Values descriptions;
        std::string name;
        for (const std::string& line : ReadLines(folder_ + "/transitions.txt")) {
            if (line.empty()) {
                name.clear();
            } else if (name.empty()) {
                name = line;
            } else {
                descriptions[name] += line + "\n";
            }
        }
        if (descriptions.size() != kTransitionCount)
            throw Fault("transitions.txt: not one text a transition");
        return descriptions;
    }

    static std::string FramesText(int row) {
        const std::int64_t frames = FrameCount(row, PluginSettings(), {kUsualWidth, kUsualHeight}) - 1;
        if (frames == 0) return "No frames between the pictures";
        return std::to_string(frames) + " frames between two pictures of " + std::to_string(kUsualWidth) +
               " by " + std::to_string(kUsualHeight) + " with the settings as delivered";
    }

    std::string Transitions() const {
        const Values descriptions = Descriptions();
        std::string cards;
        for (int row = 0; row < kTransitionCount; ++row) {
            const std::string name = TransitionTable[static_cast<std::size_t>(row)].name;
            const auto description = descriptions.find(name);
            if (description == descriptions.end()) throw Fault("transitions.txt: nothing on " + name);
            std::vector<const SettingDescriptor*> settings;
            for (const std::string& key : Split(TransitionSettings(row), ' '))
                settings.push_back(&DescriptorOf(key));
            cards += Fill(Text("transition.html"),
                          {{"anchor", AnchorOfRow(row)},
                           {"name", Escaped(name)},
                           {"picture", std::string(kPictures) + "/" + std::to_string(row) + ".gif"},
                           {"description", Escaped(description->second)},
                           {"frames", FramesText(row)},
                           {"settings", Settings(settings, Anchored::No)}});
        }
        return cards;
    }

    std::string Palettes() const {
        const std::vector<std::string> names = ChoicesOf(DescriptorOf("TransitionPalette"));
        const std::vector<std::string> lines = ReadLines(folder_ + "/palettes.txt");
        if (lines.size() != names.size()) throw Fault("palettes.txt: not one line a palette");
        std::string rows;
        for (std::size_t i = 0; i < names.size(); ++i)
            rows += Fill(Text("palette.html"), {{"name", Escaped(names[i])}, {"text", Escaped(lines[i])}});
        return rows;
    }

    std::string folder_;
};

} // namespace

std::string MakePage(const std::string& texts) { return Page(texts).Make(); }

} // namespace lumafold::manual
