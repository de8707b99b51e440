#include "hosts/desktop/script_steps.h"

#include <charconv>

#include "resources/texts/resource_ids.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

struct Verb {
    std::string_view name;
    std::size_t least, most; ///< words that follow
};
constexpr Verb kVerbs[] = {
    {"open-dialog", 0, 0},
    {"add", 1, 260},
    {"paste", 0, 0},
    {"remove-all", 0, 0},
    {"select-item", 1, 1},
    {"set", 2, 2},
    {"press", 1, 1},
    {"advanced", 0, 0},
    {"override", 1, 1},
    {"ok", 0, 0},
    {"cancel", 0, 0},
    {"transition", 2, 4},
    {"build", 0, 0},
    {"test", 0, 0},
    {"capabilities", 1, 1},
    {"open", 1, 1},
    {"drop", 1, 260},
    {"save-as", 1, 1},
    {"save-frames", 1, 1},
    {"close", 0, 0},
    {"select", 1, 1},
    {"frame", 1, 1},
    {"play", 0, 0},
    {"pause", 0, 0},
    {"zoom", 1, 1},
    {"copy", 0, 0},
    {"wait", 1, 1},
    {"screenshot", 1, 2},
    {"expect-documents", 1, 1},
    {"expect-frames", 1, 1},
    {"expect-size", 2, 2},
    {"expect-colours", 1, 1},
    {"expect-title", 1, 1},
    {"expect-items", 1, 1},
    {"expect-value", 2, 2},
    {"expect-enabled", 2, 2},
    {"expect-message", 1, 1},
    {"expect-manual", 1, 1},
    {"quit", 0, 0},
};

/// False for a quote that is not closed.
bool SplitLine(std::string_view line, std::vector<std::string>& words) {
    constexpr std::string_view kBlanks = " \t\r";
    words.clear();
    for (std::size_t at = line.find_first_not_of(kBlanks); at < line.size();
         at = line.find_first_not_of(kBlanks, at)) {
        if (line[at] == '#' && !words.empty() && at + 1 < line.size() && line[at + 1] != ' ') {
            // A colour, not a remark.
        } else if (line[at] == '#') {
            return true;
        }
        const bool quoted = line[at] == '"';
        const std::size_t start = at + (quoted ? 1 : 0);
        const std::size_t end = quoted ? line.find('"', start) : line.find_first_of(kBlanks, start);
        if (quoted && end == std::string_view::npos) return false;
        words.emplace_back(line.substr(start, end - start));
        at = end == std::string_view::npos ? line.size() : end + (quoted ? 1 : 0);
    }
    return true;
}

const char* WhyNot(const std::vector<std::string>& words) {
    for (const Verb& verb : kVerbs) {
        if (verb.name != words.front()) continue;
        if (words.size() - 1 < verb.least) return "says too little";
        return words.size() - 1 > verb.most ? "says too much" : nullptr;
    }
    return "is no step";
}

/// An entry gets a transition of its own in a dialog of its own.
void AppendTransition(int line, const std::vector<std::string>& words, std::vector<ScriptStep>& steps) {
    constexpr int kControls[] = {LUMAFOLD_OVERRIDE_TRANSITION, LUMAFOLD_OVERRIDE_DELAY,
                                 LUMAFOLD_OVERRIDE_PAUSE};
    steps.push_back({line, "override", {words[1]}});
    for (std::size_t i = 2; i < words.size(); ++i)
        steps.push_back({line, "set", {std::to_string(kControls[i - 2]), words[i]}});
    steps.push_back({line, "ok", {}});
}

struct MainControl {
    std::string_view key;
    int id;
};
constexpr MainControl kMainControls[] = {
    {"TransitionType", LUMAFOLD_MAIN_TRANSITION},
    {"TransitionPalette", LUMAFOLD_MAIN_PALETTE},
    {"TransitionDelay", LUMAFOLD_MAIN_DELAY},
    {"TransitionPause", LUMAFOLD_MAIN_PAUSE},
    {"TransitionMattcolour", LUMAFOLD_MAIN_MATTE},
    {"TransitionTruecolour", LUMAFOLD_MAIN_TRUE_COLOUR},
    {"TransitionCustompalette", LUMAFOLD_MAIN_CUSTOM_PALETTE},
    {"TransitionDither", LUMAFOLD_MAIN_DITHER},
    {"Supercompress", LUMAFOLD_MAIN_SUPERCOMPRESS},
};

} // namespace

bool ParseScript(std::string_view text, std::vector<ScriptStep>& steps, std::string& error) {
    steps.clear();
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++number;
        std::vector<std::string> words;
        const char* wrong = SplitLine(line, words) ? nullptr : "a quote is not closed";
        if (wrong == nullptr && words.empty()) continue;
        std::string subject;
        if (wrong == nullptr) {
            wrong = WhyNot(words);
            subject = "\"" + words.front() + "\" ";
        }
        if (wrong != nullptr) {
            error = "line " + std::to_string(number) + ": " + subject + wrong;
            return false;
        }
        if (words.front() == "transition") {
            AppendTransition(number, words, steps);
        } else {
            steps.push_back({number, words.front(), {words.begin() + 1, words.end()}});
        }
    }
    return true;
}

std::string StepText(const ScriptStep& step) {
    std::string text = step.verb;
    for (const std::string& word : step.words)
        text += word.find_first_of(" \t#") == std::string::npos && !word.empty() ? " " + word
                                                                                 : " \"" + word + "\"";
    return text;
}

std::optional<int> ControlNumber(const std::string& word) {
    if (const std::optional<int> number = WholeNumber(word)) return number;
    for (const MainControl& control : kMainControls) {
        if (control.key == word) return control.id;
    }
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.key == word && row.dialog == SettingDialog::Advanced && row.controlId != 0)
            return row.controlId;
    }
    return std::nullopt;
}

std::optional<int> WholeNumber(const std::string& word) {
    int value = 0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (failure != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return value;
}

std::optional<std::uint32_t> ColourNumber(const std::string& word) {
    std::uint32_t value = 0;
    if (word.size() != 7 || word.front() != '#') return std::nullopt;
    const auto [end, failure] = std::from_chars(word.data() + 1, word.data() + word.size(), value, 16);
    if (failure != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return (value & 0xFF) << 16 | (value & 0xFF00) | value >> 16;
}

} // namespace lumafold
