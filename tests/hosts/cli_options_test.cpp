// The words of the command line: what applies to which picture, what counts as a number, what is a mistake.
#include <sstream>

#include "hosts/cli/build_options.h"
#include "hosts/cli/console.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/names.h"
#include "hosts/cli/progress.h"
#include "tests/hosts/cli_fixture.h"

namespace lumafold::test {
namespace {

std::string GapText(const GapValues& gap) {
    return std::to_string(gap.transition) + "/" + std::to_string(gap.pause) + "/" + std::to_string(gap.delay);
}

/// What `parse` makes of it, or the mistake.
template <typename Parse>
std::string OrMistake(Parse parse) {
    try {
        return parse();
    } catch (const Failure& failure) {
        return std::string("error: ") + failure.what();
    }
}

BuildOptions ParsedBuild(const std::string& line, const std::string& input = "") {
    std::istringstream in(input);
    return ParseBuild(Words(line), in);
}

/// Each picture with what follows it, then what stands for the dialog's; or the mistake.
std::string Parsed(const std::string& line, const std::string& input = "") {
    return OrMistake([&] {
        const BuildOptions options = ParsedBuild(line, input);
        std::string text;
        for (const ImageArgument& image : options.images)
            text += image.path + " " + GapText(image.gap) + ", ";
        return text + GapText(options.defaults);
    });
}

TEST(BuildOptions, GapOptionsApplyToThePicturesAfterThem) {
    const struct {
        const char *line, *expected;
    } kCases[] = {
        {"a b -o x.gif", "a 0/100/5, b 0/100/5, 0/100/5"},
        {"a --transition None b --pause 7 c -o x.gif --delay 9 d",
         "a 0/100/5, b 14/100/5, c 14/7/5, d 14/7/9, 14/7/9"},
        {"--transition 'soft IRIS ellipse' --delay=3 a --transition=21 b -ox.gif",
         "a 23/100/3, b 21/100/3, 21/100/3"},
        // The settings fill what no option says, wherever they stand.
        {"a -o x.gif --pause 1 --set TransitionType=14 --set TransitionPause=0x20 --set TransitionDelay=8",
         "a 14/32/8, 14/1/8"},
        {"a b -o x.gif --set TransitionType=33", "a 0/100/5, b 0/100/5, 0/100/5"},
        {"-o x.gif -- --pause -q", "--pause 0/100/5, -q 0/100/5, 0/100/5"},
        {"- [a] --pause 0 -5 -o x.gif", "- 0/100/5, [a] 0/100/5, -5 0/0/5, 0/0/5"},
        // A list from the standard input.
        {"a --pause 7 @- -o x.gif", "a 0/100/5, b c.png 0/7/5, ./- 0/7/5, @d 0/7/5, 0/7/5"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(Parsed(row.line, "b c.png\r\n\n-\n@d"), row.expected) << row.line;
}

/// The palette and what is switched on after these words.
std::string Switches(const std::string& line) {
    const BuildOptions options = ParsedBuild("a b -o x.gif " + line);
    const PluginSettings& settings = options.settings;
    return std::to_string(settings.TransitionPalette) + (settings.TransitionCustompalette ? " custom" : "") +
           (settings.TransitionDither ? " dither" : "") + (settings.TransitionTruecolour ? " true" : "") +
           (settings.Supercompress ? " super" : "") + (options.supercompressAsked ? " asked" : "") +
           (options.paletteAsked ? " chosen" : "");
}

TEST(BuildOptions, ShorthandsSayWhatTheDialogsSwitchesDo) {
    const struct {
        const char *line, *expected;
    } kCases[] = {
        {"", "6 custom dither super"},
        {"--no-custom-palette --no-dither --no-supercompress", "6 chosen"},
        {"--no-dither --dither --custom-palette --supercompress", "6 custom dither super asked chosen"},
        {"--set Supercompress=1 --true-colour", "6 custom dither true super asked"},
        {"--supercompress --set Supercompress=0", "6 custom dither"},
        {"--palette '216-COLOR safe'", "5 dither super chosen"},
        {"--palette=8 --custom-palette", "8 custom dither super chosen"},
        {"--custom-palette --palette 0 --set TransitionPalette=2", "2 dither super chosen"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(Switches(row.line), row.expected) << row.line;
}

TEST(SheetOptions, TakeTwoPicturesAndOneTransition) {
    const auto parsed = [](const std::string& line) {
        return OrMistake([&] {
            const SheetOptions options = ParseSheet(Words(line));
            return options.images[0] + options.images[1] + options.output + " " +
                   std::to_string(options.transition.value_or(-1)) + " " +
                   std::to_string(options.settings.TransitionMattcolour);
        });
    };
    for (const auto& [line, expected] :
         {std::pair{"a --transition 3 b -o x.png --matte 1,2,3 --transition Burp", "abx.png 8 197121"},
          {"a b", "error: no output is named, add -o FILE.png"},
          {"a -o x.png", "error: a sheet shows the way between two images, name both"},
          {"a b c -o x.png", "error: a sheet shows the way between two images, name both"},
          {"a b -o x.png --dither", "error: unknown option --dither"}})
        EXPECT_EQ(parsed(line), expected) << line;
}

TEST(BuildOptions, MistakesNameTheWordAndTheNearestName) {
    const std::pair<const char*, std::string> kMistakes[] = {
        {"-o x.gif", "no image is named"},
        {"a b", "no output is named, add -o FILE (" + OutputSuffixes() + ") or -o FOLDER/"},
        {"a --transiton 3 -o x.gif", "unknown option --transiton, did you mean \"--transition\"?"},
        {"a -x -o x.gif", "unknown option -x"},
        {"a --pause= 5", "option --pause needs a value"},
        {"a b -qo", "option -qo needs a value"},
        {"a --once --loop 2 -o x.gif", "--once plays one time, so it does not go with --loop"},
        {"a --fit cover -o x.gif", "--fit says how to come to --size, give that"},
        {"a -o x.gif -o y.gif", "option -o is given twice: x.gif and y.gif"},
        {"a -o x.gif --quiet=yes", "option --quiet takes no value"},
        {"a --estimate --sheet s.png", "--estimate writes nothing, so it does not go with --sheet"},
        {"- a @- -o x.gif", "@-: the standard input is read already"},
        {"@none -o x.gif", "@none: there is no such file or folder"},
        {"@- -o x.gif", "@-: the list names no picture"},
    };
    for (const auto& [line, expected] : kMistakes)
        EXPECT_EQ(Parsed(line), "error: " + expected) << line;
    const std::pair<const char*, std::string> kValues[] = {
        {"--loop 0", "not a number from 1 to 65535"},
        {"--format jpg", "no such kind, they are " + FormatNames(", ")},
        {"--scale 1001", "not a number of percent above 0, up to 1000"},
        {"--size 0x5", "write it as WIDTHxHEIGHT, sides of 1 to 16384 pixels"},
        {"--transition 33", "there is no such row, the table has 0 to 32"},
        {"--transition zzzz", "no transition has this name"},
        {"--transition soft", "no transition has this name, did you mean \"Soft iris (diamond)\"?"},
        {"--transition slientmovie", "no transition has this name, did you mean \"Silent movie\"?"},
        {"--pause soon", "not a number of hundredths of a second"},
        {"--set FastRemap", "write it as KEY=VALUE"},
        {"--set fsatrmeap=1", "no setting fsatrmeap, did you mean \"FastRemap\"?"},
        {"--set IrisStep=1", "no setting IrisStep, did you mean \"TransitionIrisStep\"?"},
        {"--set FastRemap=yes", "yes is no whole number from 0 to 4294967295"},
        {"--palette 9", "there is no such palette, they are 0 to 8"},
        {"--palette 64-ortogonal", "no palette has this name, did you mean \"64-color orthogonal\"?"},
        {"--matte red", "write a colour as R,G,B or '#RRGGBB'"},
    };
    for (const auto& [words, expected] : kValues)
        EXPECT_EQ(Parsed(std::string("a -o x.gif ") + words),
                  std::string("error: ") + words + ": " + expected);
    EXPECT_NE(Parsed("a -o x.gif --transition 'dimond SOFT'").find("\"Soft iris (diamond)\"?"),
              std::string::npos);
}

TEST(BuildOptions, SettingsTakeAny32BitNumberAndWarnOutsideTheirRange) {
    const BuildOptions options =
        ParsedBuild("a b -o x.gif --set TransitionIrisStep=21 --set TransitionIrisRadius=4294967295 --set "
                    "PatchLevel=3 --set TransitionMattcolour=0x1112233 --pause 1001");
    EXPECT_EQ(options.settings.TransitionIrisStep, 21u);
    EXPECT_EQ(options.settings.TransitionIrisRadius, 0xFFFFFFFFu);
    EXPECT_EQ(options.settings.PatchLevel, 17u) << "written to files, never taken";
    EXPECT_EQ(options.settings.TransitionMattcolour, 0x1112233u);
    const std::vector<std::string> expected{
        "--set TransitionIrisStep: 21 is outside the range of 2 to 20",
        "--set TransitionIrisRadius: 4294967295 is outside the range of 2 to 400",
        "--set PatchLevel: 3 is outside the range of always 17 and stays as it is",
        "--set TransitionMattcolour: 0x1112233 is outside the range of 0x000000 to 0xFFFFFF",
        "--pause: 1001 is outside the range of 0 to 1000",
        "--pause stands after the last image and changes nothing",
    };
    EXPECT_EQ(options.warnings, expected);
}

TEST(Names, NumbersEndWhereThirtyTwoBitsDo) {
    EXPECT_EQ(ParseNumber("4294967295"), 0xFFFFFFFFu);
    EXPECT_EQ(ParseNumber("0xFFFFFFFF"), 0xFFFFFFFFu);
    EXPECT_EQ(ParseNumber("007"), 7u);
    for (const char* text :
         {"", "-", "0x", "4294967296", "-1", "12 ", "1e3", "0xG", "--1", "+1", "99999999999999999999"}) {
        EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
    }
}

TEST(Names, ColoursAreThreeBytesInEitherNotation) {
    EXPECT_EQ(ParseColour("1,2,255"), 0xFF0201u);
    EXPECT_EQ(ParseColour("#0102fF"), 0xFF0201u);
    for (const char* text : {"", "1,2", "1,2,", "1,2,3,4", "1,2,256", "-1,2,3", "0x1,2,3", "1, 2,3", "#12345",
                             "#1234567", "#12345G", "123456"}) {
        EXPECT_EQ(ParseColour(text), std::nullopt) << text;
    }
}

TEST(Console, ShowsWhatWouldSteerATerminalAsEscapes) {
    EXPECT_EQ(Printable("a b\x1B[2J\n\r\t\x7F"), "a b\\x1B[2J\\n\\r\\t\\x7F");
#ifndef _WIN32
    EXPECT_EQ(Printable("gr\xC3\xBC\xE2\x82\xAC\xF0\x9F\x99\x82"), "gr\xC3\xBC\xE2\x82\xAC\xF0\x9F\x99\x82");
    EXPECT_EQ(Printable("\xE2\x80\xAEgnp\xE2\x80\xA6"), "\\xE2\\x80\\xAEgnp\xE2\x80\xA6") << "right to left";
    EXPECT_EQ(Printable("\xC2\x9B"
                        "1m\xFFz\xE2\x82"),
              "\\xC2\\x9B1m\\xFFz\\xE2\\x82");
#endif
}

TEST(Progress, DrawsOverALongerBar) {
    std::ostringstream screen;
    Progress bar(screen, ProgressStyle::Bar);
    bar.Caption("Building");
    bar.Position(9, 10);
    bar.Caption("Remapping");
    bar.Clear();
    const std::string line = "\rBuilding          [", rest(32, '.');
    EXPECT_EQ(screen.str(), line + rest + "]" + line + std::string(28, '#') +
                                "....] 9/10\rRemapping         [" + rest + "]     \r" + std::string(52, ' ') +
                                "\r");
}

TEST_F(CommandLineTest, HelpAndVersionAnswerEverywhere) {
    for (const std::string command : {"build", "sheet", "transitions", "palettes", "settings"}) {
        const Ran help = Run(command + " --help"), version = Run(command + " a --version --nonsense");
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.out.find("usage: lumafold " + command), 0u) << help.out;
        EXPECT_EQ(version.out.find("lumafold 1."), 0u);
        EXPECT_EQ(help.err + version.err, "");
    }
    EXPECT_EQ(Run("--help").status, 0);
    EXPECT_EQ(Run("").status, 2);
    const Ran unknown = Run("biuld a");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "lumafold: unknown command biuld, did you mean \"build\"?\n");
}

TEST_F(CommandLineTest, ListingsHaveALineForEveryRowAndKey) {
    const auto lists = [&](const char* command, const std::string& text) {
        const std::string out = Run(command).out;
        EXPECT_NE(out.find(text), std::string::npos) << text << " in\n" << out;
        return std::count(out.begin(), out.end(), '\n');
    };
    EXPECT_EQ(lists("transitions",
                    "\n 23  Soft iris (ellipse)                 TransitionIrisStep TransitionIrisRadius"),
              1 + 33);
    EXPECT_EQ(lists("palettes", "\n     5  216-color safe                216     8\n"), 1 + 9);
    for (const SettingDescriptor& setting : SettingDescriptors())
        lists("settings", "\n" + std::string(setting.key) + " ");
    lists("settings", "\n    0 = Still, 1 = Track horizontal, 2 = Track vertical\n");
    lists("settings", "0xFF33CC  0x000000 to 0xFFFFFF");
}

} // namespace
} // namespace lumafold::test
