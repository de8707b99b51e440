// One command of the program: its options are described once, with group, range and meaning; from that its
// words are taken and its help is written, of which manual page and completion are made.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace lumafold {

/// A whole number that an option takes; `unit` is for the message where it is none: "hundredths of a second".
struct NumberRange {
    std::uint32_t least, most;
    std::string unit;
};

/// A command as the program's help lists it; `usage` is what stands behind the name.
struct CommandSummary {
    const char *name, *usage, *meaning;
};

class CommandWords {
public:
    using Take = std::function<void(const std::string& value)>;
    using TakeNumber = std::function<void(std::uint32_t value)>;

    /// `text` stands above the options; each line of it is a paragraph.
    CommandWords(const CommandSummary& command, const std::string& text);
    CommandWords(const CommandWords&) = delete;
    CommandWords& operator=(const CommandWords&) = delete;
    ~CommandWords();

    /// Options described from now on stand under this heading.
    void Group(const std::string& heading) { group_ = heading; }
    /// `names` as in "-o,--output".
    void Value(const std::string& names, const std::string& placeholder, const std::string& meaning,
               Take take);
    /// The range is told behind the meaning, and held.
    void Number(const std::string& name, const std::string& placeholder, const NumberRange& range,
                const std::string& meaning, TakeNumber take);
    void Switch(const std::string& names, const std::string& meaning, std::function<void()> take);
    /// What is no option; without this, there may be none.
    void Others(Take take);
    /// What stands at the end of the help, in paragraphs as the text.
    void Footer(const std::string& text);

    /// Hands each word to what takes it, in the order in which they stand, which is how an option can apply
    /// to what follows it. Throws Failure, and Answer for --help and --version.
    void Read(std::span<const std::string> words);

private:
    void AddOption(CLI::Option* option, const std::string& meaning, Take take);
    void CheckForEmptyValues(std::span<const std::string> words) const;
    [[noreturn]] void FailOnMismatch(std::span<const std::string> words) const;
    [[noreturn]] void FailOnUnknown() const;

    const CommandSummary& command_;
    std::string group_ = "Options";
    std::unique_ptr<CLI::App> app_;
    std::map<const CLI::Option*, Take> takes_;
};

/// What --version prints.
std::string VersionText();

/// The program's own help: what commands there are.
std::string ProgramHelp(std::span<const CommandSummary* const> commands);

} // namespace lumafold
