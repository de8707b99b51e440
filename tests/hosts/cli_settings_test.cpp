// Settings files on the command line: what they set, what stands above them, and what is written.
#include <sstream>

#include <nlohmann/json.hpp>

#include "hosts/cli/build_options.h"
#include "settings/config_file.h"
#include "tests/hosts/cli_fixture.h"

namespace lumafold::test {
namespace {

TEST_F(CommandLineTest, AConfigFileComesBeforeAllOtherOptions) {
    Put("a.ini", "TransitionType = 14\nTransitionPause=7 hundredths\nTransitionDelay = 3\nFastRemap=0\n"
                 "Supercompress = 1\nPatchLevel = 3\nTransitionIrisStep = 999\n");
    std::istringstream in;
    const BuildOptions options =
        ParseBuild(Words("--set TransitionDelay=4 --palette=3 a b -o x.gif --config " + Path("a.ini")), in);
    EXPECT_EQ(options.images[0].gap.transition, 14);
    EXPECT_EQ(options.images[0].gap.pause, 7);
    EXPECT_EQ(options.images[0].gap.delay, 4);
    EXPECT_EQ(options.settings.FastRemap, 0U);
    EXPECT_EQ(options.settings.TransitionPalette, 3U);
    EXPECT_EQ(options.settings.PatchLevel, 17U);
    EXPECT_EQ(options.settings.TransitionIrisStep, 999U);
    EXPECT_FALSE(options.supercompressAsked) << "every file holds all settings";
    EXPECT_TRUE(options.warnings.empty());
    EXPECT_EQ(ParseSheet(Words("a b -o x.png --config=" + Path("a.ini"))).settings.TransitionDelay, 3U);
}

TEST_F(CommandLineTest, SettingsAreShownAsReadAndWrittenInTheSameForm) {
    Put("a.ini", "TransitionDelay=3\r\nTransitionMattcolour = 255\r\n");
    const Ran shown = Run("settings --config %/a.ini --set TransitionPause=2000 --write %/b.ini");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.err,
              "lumafold: warning: --set TransitionPause: 2000 is outside the range of 0 to 1000\n");
    EXPECT_NE(shown.out.find("\nTransitionDelay                  3           5         1 to 1000             "
                             "number  Delay:                     delay of a frame"),
              std::string::npos)
        << shown.out;
    EXPECT_NE(shown.out.find("\nTransitionMattcolour             0x0000FF    0xCCCCCC"), std::string::npos);
    PluginSettings written;
    ASSERT_TRUE(LoadSettings(Path("b.ini").c_str(), written));
    EXPECT_EQ(written.TransitionDelay + written.TransitionPause + written.TransitionMattcolour,
              3U + 2000 + 255);

    const auto rows = nlohmann::json::parse(Run("settings --json --config %/b.ini").out);
    ASSERT_EQ(rows.size(), SettingDescriptors().size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const SettingDescriptor& setting = SettingDescriptors()[i];
        EXPECT_EQ(rows[i]["key"], setting.key);
        EXPECT_EQ(rows[i]["value"], written.*setting.value);
        EXPECT_EQ(rows[i].contains("choices"), setting.kind == SettingKind::Choice && *setting.choices != 0);
    }
    EXPECT_EQ(rows[9].dump(), R"({"default":1,"key":"Supercompress","kind":"switch","label":"Supercompress",)"
                              R"("maximum":1,"meaning":"mark pixels that did not change as transparent",)"
                              R"("minimum":0,"value":1})");
}

TEST_F(CommandLineTest, SettingsFilesThatCannotBeReadOrWrittenSaySo) {
    Put("a.ini", "FastRemap=0\n");
    const struct {
        const char* line;
        int status;
        std::string err;
    } kCases[] = {
        {"build a b -o x.gif --config none.ini", 1, "--config none.ini: there is no such file or folder"},
        {"sheet a b -o x.png --config /", 1, "--config /: this is a folder"},
        {"settings --config=none.ini", 1, "--config none.ini: there is no such file or folder"},
        {"settings --write /", 1, "--write /: this is a folder"},
        {"settings --config", 2, "option --config needs a value"},
        {"settings --config=a --config=b", 2, "option --config is given twice: a and b"},
        {"settings a", 2, "settings takes no words after it: a"},
        {"settings --dither", 2, "unknown option --dither"},
        {"settings --jsn", 2, "unknown option --jsn, did you mean \"--json\"?"},
        {"palettes -- settings", 2, "palettes takes no words after it: settings"},
    };
    for (const auto& row : kCases) {
        const Ran ran = Run(row.line);
        EXPECT_EQ(ran.status, row.status) << row.err;
        EXPECT_EQ(ran.err, "lumafold: " + row.err + "\n");
        EXPECT_EQ(ran.out, "");
    }
}

} // namespace
} // namespace lumafold::test
