#include "hosts/cli/command_words.h"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

#include "hosts/cli/failure.h"
#include "hosts/cli/names.h"
#include "lumafold_version.h"

namespace lumafold {
namespace {

constexpr char kBrackets = '\x1D'; ///< stands before a word in brackets while the library has it
std::string AsTyped(const std::string& word) { return word.substr(word.starts_with(kBrackets) ? 1 : 0); }

constexpr std::size_t kMeaningsAt = 26, kLineWidth = 108; // columns

std::string Wrapped(const std::string& text, std::size_t indent, std::size_t column) {
    std::istringstream words(text);
    std::string word, lines;
    for (std::size_t at = column; words >> word; at += word.size() + 1) {
        if (at > indent && at + word.size() > kLineWidth) {
            lines.back() = '\n';
            lines.append(indent, ' ');
            at = indent;
        }
        lines += word + ' ';
    }
    if (!lines.empty()) lines.back() = '\n';
    return lines;
}

std::string HelpLine(const std::string& term, const std::string& meaning) {
    std::string line = "  " + term;
    line += line.size() + 2 > kMeaningsAt ? "\n" + std::string(kMeaningsAt, ' ')
                                          : std::string(kMeaningsAt - line.size(), ' ');
    return line + Wrapped(meaning, kMeaningsAt, kMeaningsAt);
}

std::string Paragraphs(const std::string& text) {
    std::string wrapped;
    std::istringstream paragraphs(text);
    for (std::string paragraph; std::getline(paragraphs, paragraph);)
        wrapped += "\n" + Wrapped(paragraph, 0, 0);
    return wrapped;
}

std::string Usage(const CommandSummary& command) {
    return std::string("lumafold ") + command.name + (*command.usage == 0 ? "" : " ") + command.usage;
}

/// The help as manual page and completion read it.
class HelpLayout : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode mode) const override {
        const std::string footer = app->get_footer();
        return "usage: " + app->get_name() + "\n" + Paragraphs(app->get_description()) + "\n" +
               make_groups(app, mode) + Paragraphs(footer);
    }
    std::string make_group(std::string group, bool, std::vector<const CLI::Option*> options) const override {
        std::string text = group + ":\n";
        for (const CLI::Option* option : options)
            text += make_option(option, false);
        return text;
    }
    std::string make_option(const CLI::Option* option, bool) const override {
        std::string names;
        for (const std::string& name : option->get_snames())
            names += (names.empty() ? "-" : ", -") + name;
        for (const std::string& name : option->get_lnames())
            names += (names.empty() ? "--" : ", --") + name;
        if (!option->get_option_text().empty()) names += " " + option->get_option_text();
        return HelpLine(names, option->get_description());
    }
};

} // namespace

CommandWords::CommandWords(const CommandSummary& command, const std::string& text)
    : command_(command), app_(std::make_unique<CLI::App>(text, Usage(command))) {
    app_->set_help_flag(); // comes last
    app_->allow_windows_style_options(false);
    app_->formatter(std::make_shared<HelpLayout>());
}

CommandWords::~CommandWords() = default;

void CommandWords::AddOption(CLI::Option* option, const std::string& meaning, Take take) {
    option->description(meaning)->group(group_)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    takes_.emplace(option, std::move(take));
}

void CommandWords::Value(const std::string& names, const std::string& placeholder, const std::string& meaning,
                         Take take) {
    CLI::Option* option = app_->add_option(names);
    option->allow_extra_args(false)->option_text(placeholder);
    AddOption(option, meaning, std::move(take));
}

void CommandWords::Number(const std::string& name, const std::string& placeholder, const NumberRange& range,
                          const std::string& meaning, TakeNumber take) {
    const bool bounded = range.most < INT32_MAX;
    const std::string bounds = std::to_string(range.least) + " to " + std::to_string(range.most);
    const std::string kind =
        "a number" + (range.unit.empty() ? "" : " of " + range.unit) + (bounded ? " from " + bounds : "");
    const auto read = [=, take = std::move(take)](const std::string& value) {
        const auto number = ParseNumber(value);
        if (!number || *number < range.least || *number > range.most)
            Mistake(name + " " + value + ": not " + kind);
        take(*number);
    };
    Value(name, placeholder, meaning + (bounded ? " (" + bounds + ")" : ""), read);
}

void CommandWords::Switch(const std::string& names, const std::string& meaning, std::function<void()> take) {
    CLI::Option* option = app_->add_flag(names)->disable_flag_override();
    AddOption(option, meaning, [take = std::move(take)](const std::string&) { take(); });
}

void CommandWords::Others(Take take) {
    CLI::Option* option = app_->add_option("words");
    option->expected(0, 1 << 20)->allow_extra_args();
    AddOption(option, "", std::move(take));
}

void CommandWords::Footer(const std::string& text) { app_->footer(text); }

void CommandWords::Read(std::span<const std::string> words) {
    app_->set_help_flag("-h,--help", "this text")->disable_flag_override()->group(group_);
    app_->set_version_flag("--version", VersionText(), "which version this is")->group(group_);
    CheckForEmptyValues(words);
    std::vector<std::string> backwards(words.rbegin(), words.rend());
    // The library would take brackets round a word for a list; a file's name may have them.
    for (std::string& word : backwards) {
        if (word.starts_with('[') && word.ends_with(']')) word.insert(0, 1, kBrackets);
    }
    try {
        app_->parse(backwards);
    } catch (const CLI::CallForHelp&) {
        throw Answer(app_->help());
    } catch (const CLI::CallForVersion&) {
        throw Answer(VersionText());
    } catch (const CLI::ExtrasError&) {
        FailOnUnknown();
    } catch (const CLI::ParseError&) {
        FailOnMismatch(words);
    }
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* option : app_->parse_order()) {
        const std::string value = AsTyped(option->results().at(taken[option]++));
        if (const auto take = takes_.find(option); take != takes_.end()) take->second(value);
    }
}

/// The library would fill them with the word behind.
void CommandWords::CheckForEmptyValues(std::span<const std::string> words) const {
    for (const std::string& word : words) {
        if (word == "--") return;
        if (!word.starts_with("--") || !word.ends_with('=')) continue;
        const CLI::Option* option = app_->get_option_no_throw(word.substr(0, word.size() - 1));
        if (option != nullptr) Mistake("option " + word.substr(0, word.size() - 1) + " needs a value");
    }
}

/// What the library says has names that nobody typed, so it is asked only what kind of mistake it is.
void CommandWords::FailOnMismatch(std::span<const std::string> words) const {
    for (const std::string& word : words) {
        const std::string name = word.substr(0, word.find('='));
        const CLI::Option* option = word == name ? nullptr : app_->get_option_no_throw(name);
        if (option != nullptr && option->get_items_expected_max() == 0)
            Mistake("option " + name + " takes no value");
    }
    Mistake("option " + words.back() + " needs a value");
}

void CommandWords::FailOnUnknown() const {
    std::vector<std::string> names;
    for (const CLI::Option* option : app_->get_options()) {
        for (const std::string& name : option->get_snames())
            names.push_back("-" + name);
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    const std::vector<std::string> unknown = app_->remaining();
    const std::string first =
        AsTyped(unknown.front() == "--" && unknown.size() > 1 ? unknown[1] : unknown.front());
    if (!first.starts_with('-')) {
        Mistake(std::string(command_.name) + " takes no words after it: " + first);
    }
    const std::string name = first.substr(0, first.find('='));
    Mistake("unknown option " + name +
            DidYouMean(name, std::vector<std::string_view>(names.begin(), names.end())));
}

std::string VersionText() { return "lumafold " LUMAFOLD_VERSION "\n"; }

std::string ProgramHelp(std::span<const CommandSummary* const> commands) {
    std::string text;
    for (const CommandSummary* command : commands)
        text += (text.empty() ? "usage: " : "       ") + Usage(*command) + "\n";
    text += "\n";
    for (const CommandSummary* command : commands)
        text += HelpLine(command->name, command->meaning);
    return text + "\n  --help, --version, and COMMAND --help for how to use one of them\n";
}

} // namespace lumafold
