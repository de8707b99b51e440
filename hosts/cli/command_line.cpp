#include "hosts/cli/command_line.h"

#include <algorithm>
#include <new>

#include "hosts/cli/build_command.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/listings.h"
#include "hosts/cli/names.h"
#include "lumafold_version.h"

namespace lumafold {
namespace {

constexpr char kHelp[] =
    R"(usage: lumafold build [options] IMAGE... -o OUTPUT
       lumafold transitions
       lumafold settings

  build         turns pictures into a looping animation ("lumafold build --help" tells how)
  transitions   lists the transitions: row, name, the settings each reads
  settings      lists the settings: key, default, range, meaning

  --help, --version
)";

constexpr char kTransitionsHelp[] =
    "usage: lumafold transitions\n\nLists row, name and the settings each reads.\n";
constexpr char kSettingsHelp[] =
    "usage: lumafold settings\n\nLists every key with its default, range and meaning.\n";

constexpr std::string_view kCommands[] = {"build", "transitions", "settings"};

bool AsksFor(std::span<const std::string> words, std::string_view option) {
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find(words.begin(), end, option) != end;
}

int UsageError(std::ostream& err, const std::string& text) {
    err << "lumafold: " << text << '\n';
    return 2;
}

const char* HelpFor(const std::string& command) {
    if (command == "build") return kBuildHelp;
    if (command == "transitions") return kTransitionsHelp;
    if (command == "settings") return kSettingsHelp;
    return kHelp;
}

int RunListing(const std::string& command, std::span<const std::string> words, std::ostream& out,
               std::ostream& err) {
    if (!words.empty()) return UsageError(err, command + " takes no words after it: " + words.front());
    command == "transitions" ? ListTransitions(out) : ListSettings(out);
    return 0;
}

} // namespace

int RunCommandLine(std::span<const std::string> args, std::ostream& out, std::ostream& err) {
    if (args.empty()) {
        err << kHelp;
        return 2;
    }
    const std::string& command = args.front();
    if (AsksFor(args, "--version")) {
        out << "lumafold " LUMAFOLD_VERSION "\n";
        return 0;
    }
    if (AsksFor(args, "--help") || AsksFor(args, "-h")) {
        out << HelpFor(command);
        return 0;
    }
    const auto words = args.subspan(1);
    try {
        if (command == "build") return RunBuild(words, out, err);
        if (command == "transitions" || command == "settings") return RunListing(command, words, out, err);
    } catch (const std::bad_alloc&) {
        err << "lumafold: not enough memory\n";
        return 1;
    }
    return UsageError(err, "unknown command " + command + DidYouMean(command, kCommands));
}

} // namespace lumafold
