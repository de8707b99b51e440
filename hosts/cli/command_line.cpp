#include "hosts/cli/command_line.h"

#include <algorithm>
#include <new>

#include "hosts/cli/build_command.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/listings.h"
#include "hosts/cli/names.h"
#include "hosts/cli/sheet_command.h"
#include "hosts/cli/standard_streams.h"

namespace lumafold {
namespace {

using Words = std::span<const std::string>;

const CommandSummary kTransitionsCommand = {"transitions", "",
                                            "lists the transitions: row, name, the settings each reads"};
const CommandSummary kPalettesCommand = {"palettes", "",
                                         "lists the fixed palettes: number, name, colours, bits a pixel"};

const CommandSummary* const kCommands[] = {&kBuildCommand, &kSheetCommand, &kSettingsCommand,
                                           &kTransitionsCommand, &kPalettesCommand};
constexpr int (*kRuns[])(Words, const Console&) = {
    &RunBuild, &RunSheet, &RunSettings,
    [](Words words, const Console& console) {
        CommandWords(kTransitionsCommand, "Lists row, name and the settings each reads.").Read(words);
        ListTransitions(console.out);
        return 0;
    },
    [](Words words, const Console& console) {
        CommandWords(kPalettesCommand, "Lists the fixed palettes with their colours and bits a pixel.")
            .Read(words);
        ListPalettes(console.out);
        return 0;
    }};

std::string DidYouMeanCommand(std::string_view word) {
    std::vector<std::string_view> names;
    for (const CommandSummary* command : kCommands)
        names.emplace_back(command->name);
    return DidYouMean(word, names);
}

int RunCommand(Words args, const Console& console) {
    const std::string& name = args.front();
    for (std::size_t i = 0; i < std::size(kCommands); ++i) {
        if (name == kCommands[i]->name) return kRuns[i](args.subspan(1), console);
    }
    const auto asks = [&](std::string_view option) {
        return std::find(args.begin(), args.end(), option) != args.end();
    };
    if (asks("--version")) throw Answer(VersionText());
    if (asks("--help") || asks("-h")) throw Answer(ProgramHelp(kCommands));
    Mistake("unknown command " + name + DidYouMeanCommand(name));
}

} // namespace

int RunCommandLine(Words args, const Console& console) {
    if (args.empty()) {
        console.err << ProgramHelp(kCommands);
        return kMistake;
    }
    try {
        int status = 0;
        try {
            status = RunCommand(args, console);
        } catch (const Answer& answer) {
            console.out << answer.what();
        }
        if (console.out.flush() || status != 0) return status;
        throw Failure(kFailed, kStandardOutputFull);
    } catch (const Failure& failure) {
        console.Say(failure.what());
        return failure.status;
    } catch (const std::bad_alloc&) {
        console.Say("not enough memory");
        return kFailed;
    }
}

} // namespace lumafold
