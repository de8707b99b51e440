#include "hosts/cli/command_line.h"

#include <algorithm>
#include <new>

#include "hosts/cli/build_command.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/listings.h"
#include "hosts/cli/names.h"
#include "hosts/cli/sheet_command.h"
#include "lumafold_version.h"

namespace lumafold {
namespace {

constexpr char kHelp[] =
    R"(usage: lumafold build [options] IMAGE... -o OUTPUT
       lumafold sheet [options] IMAGE IMAGE -o FILE.png
       lumafold settings [options]
       lumafold transitions | palettes

  build         turns pictures into a looping animation ("lumafold build --help" tells how)
  sheet         draws what the transitions look like ("lumafold sheet --help" tells how)
  settings      shows the settings, and writes them to a file ("lumafold settings --help" tells how)
  transitions   lists the transitions: row, name, the settings each reads
  palettes      lists the fixed palettes: number, name, colours, bits a pixel

  --help, --version
)";

using Words = std::span<const std::string>;

struct Command {
    std::string_view name;
    const char* help;
    int (*run)(Words words, std::ostream& out, std::ostream& err); ///< null for a listing
    void (*list)(std::ostream& out);
};

constexpr Command kCommands[] = {
    {"build", kBuildHelp, &RunBuild, nullptr},
    {"sheet", kSheetHelp, &RunSheet, nullptr},
    {"transitions", "usage: lumafold transitions\n\nLists row, name and the settings each reads.\n", nullptr,
     &ListTransitions},
    {"palettes",
     "usage: lumafold palettes\n\nLists the fixed palettes with their colours and bits a pixel.\n", nullptr,
     &ListPalettes},
    {"settings", kSettingsHelp, &RunSettings, nullptr},
};

const Command* FindCommand(std::string_view name) {
    const auto found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                    [&](const Command& command) { return command.name == name; });
    return found == std::end(kCommands) ? nullptr : found;
}

std::string DidYouMeanCommand(std::string_view word) {
    std::vector<std::string_view> names;
    for (const Command& command : kCommands)
        names.push_back(command.name);
    return DidYouMean(word, names);
}

bool AsksFor(Words words, std::string_view option) {
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find(words.begin(), end, option) != end;
}

int UsageError(std::ostream& err, const std::string& text) {
    err << "lumafold: " << text << '\n';
    return 2;
}

int RunCommand(const Command& command, Words words, std::ostream& out, std::ostream& err) {
    if (command.run != nullptr) return command.run(words, out, err);
    if (!words.empty()) {
        return UsageError(err, std::string(command.name) + " takes no words after it: " + words.front());
    }
    command.list(out);
    return 0;
}

} // namespace

int RunCommandLine(Words args, std::ostream& out, std::ostream& err) {
    if (args.empty()) {
        err << kHelp;
        return 2;
    }
    const std::string& name = args.front();
    const Command* command = FindCommand(name);
    if (AsksFor(args, "--version")) {
        out << "lumafold " LUMAFOLD_VERSION "\n";
        return 0;
    }
    if (AsksFor(args, "--help") || AsksFor(args, "-h")) {
        out << (command != nullptr ? command->help : kHelp);
        return 0;
    }
    if (command == nullptr) return UsageError(err, "unknown command " + name + DidYouMeanCommand(name));
    try {
        return RunCommand(*command, args.subspan(1), out, err);
    } catch (const std::bad_alloc&) {
        err << "lumafold: not enough memory\n";
        return 1;
    }
}

} // namespace lumafold
