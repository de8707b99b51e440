// The settings file: what each line of a forgiving format means, and the very text that is written.
#include "settings/config_file.h"

#include <algorithm>
#include <ctime>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/failing_memory.h"
#include "tests/support/scratch_folder.h"

namespace lumafold::test {
namespace {

#ifdef _WIN32
constexpr char kLineEnd[] = "\r\n";
#else
constexpr char kLineEnd[] = "\n";
#endif

class ConfigFile : public testing::Test {
protected:
    std::string Path() const { return folder_.Path("a.ini"); }
    /// What a file of these bytes changes: "Key=value", with a blank between.
    std::string Read(const std::string& bytes) {
        folder_.Put("a.ini", bytes);
        PluginSettings settings;
        EXPECT_TRUE(LoadSettings(Path().c_str(), settings));
        return Changes(settings);
    }
    std::string Changes(const PluginSettings& settings) const {
        std::string changes;
        for (const SettingDescriptor& row : SettingDescriptors()) {
            const std::uint32_t value = settings.*row.value;
            if (value == row.defaultValue) continue;
            changes += (changes.empty() ? "" : " ") + std::string(row.key) + "=" + std::to_string(value);
        }
        return changes;
    }
    ScratchFolder folder_;
};

TEST_F(ConfigFile, LinesSetWhatTheyBeginToName) {
    const std::pair<std::string, std::string> kCases[] = {
        {"", ""},
        {"TransitionDelay=12", "TransitionDelay=12"},
        {"TransitionDelay   =  12\n", "TransitionDelay=12"},
        {"TransitionDelay = 12 frames\n", "TransitionDelay=12"},
        {"TransitionDelay 12\n", "TransitionDelay=12"},
        {"TransitionDelay = = 12\n", "TransitionDelay=0"},
        {"TransitionDelay\n", "TransitionDelay=0"},
        {"TransitionDelayed = 3\ntransitiondelay = 12\nTransitionDelay: 4\n", ""},
        // A beginning will do, of the first row that may be read.
        {"TransitionAlpha = 3\n", "TransitionAlphaBarCount=3"},
        {"TransitionSp=4\nTransitionImplode=7\n", "TransitionImplodeStep=7 TransitionSparkleColor=4"},
        {"P = 3\nV = 3\n", "PreserveListContents=3"},
        {"PatchLevel = 3\nVersionNumber = 1\n", ""},
        // Nothing is the beginning of the first row.
        {"  TransitionDelay = 12\n", "AddDescriptiveCommentBlock=0"},
        {"\n", "AddDescriptiveCommentBlock=0"},
        {"TransitionDelay=12\r\n\r\n", "AddDescriptiveCommentBlock=0 TransitionDelay=12"},
        {"\tTransitionDelay=12\n", "AddDescriptiveCommentBlock=0"},
        {" ;a comment starts a line\n", "AddDescriptiveCommentBlock=0"},
        {";TransitionDelay = 12\n[PlugIn]\n;\n", ""},
        // A control character ends a line's text, and no other byte does.
        {"TransitionDelay = 12\tTransitionPause = 3\n", "TransitionDelay=12"},
        {"TransitionDelay =\t12\n", "TransitionDelay=0"},
        {"TransitionDelay = 12\rTransitionPause = 3\r\r\nFastRemap=0\r\n", "FastRemap=0 TransitionDelay=12"},
        {std::string("TransitionDelay = 1\0002\nFastRemap=0\n", 32), "FastRemap=0 TransitionDelay=1"},
#ifdef _WIN32 // there it ends the file
        {"TransitionDelay = 12\r\n\x1AZ\nFastRemap=0\n", "TransitionDelay=12"},
#else
        {"TransitionDelay = 12\x1A\nFastRemap=0\n", "FastRemap=0 TransitionDelay=12"},
#endif
        {"TransitionDelay\xA0= 12\n\xE4=1\n\x7F=1\n", ""},
        // Numbers are decimal, modulo 2^32.
        {"TransitionDelay = -1", "TransitionDelay=4294967295"},
        {"TransitionDelay = +7", "TransitionDelay=7"},
        {"TransitionDelay = -+7", "TransitionDelay=0"},
        {"TransitionDelay = 0x10", "TransitionDelay=0"},
        {"TransitionDelay = 18446744073709551622", "TransitionDelay=6"},
        {"TransitionDelay = -4294967299", "TransitionDelay=4294967293"},
    };
    for (const auto& [bytes, expected] : kCases)
        EXPECT_EQ(Read(bytes), expected) << bytes;
}

// 258 characters and the line's end are one piece; what is longer goes on as a line of its own.
TEST_F(ConfigFile, LongLinesAreReadInPieces) {
    const std::string comment = ";" + std::string(257, 'c');
    EXPECT_EQ(Read(comment + "\n"), "");
    EXPECT_EQ(Read(comment + "\r\n"), "");
    EXPECT_EQ(Read(comment + "c\n"), "AddDescriptiveCommentBlock=0") << "a line end alone is an empty line";
    EXPECT_EQ(Read(comment + "cTransitionDelay=12\n"), "TransitionDelay=12");
    EXPECT_EQ(Read(comment + "TransitionDelay=12\n"), "") << "its first letter belongs to the comment";
    EXPECT_EQ(Read(std::string(1000000, 'c') + "\nTransitionDelay=12\n"), "TransitionDelay=12");
    // Wherever the reader's buffer ends, also between the two letters of a line's end.
    for (std::size_t before = 4050; before < 4110; ++before) {
        std::string text;
        while (text.size() + 100 < before)
            text += ";" + std::string(48, 'c') + "\n";
        text += ";" + std::string(before - text.size() - 2, 'c') + "\n";
        EXPECT_EQ(Read(text + "TransitionDelay=12\r\nTransitionPause=3\r\n"),
                  "TransitionDelay=12 TransitionPause=3");
    }
}

TEST_F(ConfigFile, IsWrittenInTheTablesOrder) {
    // The clock may go on meanwhile.
    std::string now[2];
    for (const int second : {0, 1}) {
        const std::time_t time = std::time(nullptr) + second;
        now[second] = std::asctime(std::localtime(&time));
        if (now[second][8] == '0') now[second][8] = ' '; // where a C library writes a zero there
    }
#ifdef _WIN32
    _putenv("TZ=ABC+11:30"); // which means nothing to the system's clock
    _tzset();
#endif
    ASSERT_TRUE(SaveSettings(Path().c_str(), PluginSettings{}));
    std::string written = folder_.Get("a.ini");
    const std::size_t bytes = written.size();
    std::erase(written, '\r');
    const std::string before = ";Brackenfield animtion plugin configuration file\n"
                               ";Edit this at your own risk\n;Last updated ";
    ASSERT_TRUE(written.starts_with(before));
    const std::string stamp = written.substr(before.size(), 24), rest = written.substr(before.size() + 24);
    EXPECT_TRUE(rest.starts_with("\n;\n[PlugIn]\nAddDescriptiveCommentBlock = 1\nDitherBrightness = 20\n"));
    Checksum sum; // of every key with its default
    sum.Add(rest.data(), rest.size());
    EXPECT_EQ(sum.Value(), 0xAA10ADD7C1CAE526U) << std::hex << sum.Value() << rest;
    const auto lines = static_cast<std::size_t>(std::count(written.begin(), written.end(), '\n'));
    EXPECT_EQ(bytes, written.size() + lines * (sizeof(kLineEnd) - 2));
    EXPECT_TRUE(now[0] == stamp + "\n" || now[1] == stamp + "\n") << stamp;
}

TEST_F(ConfigFile, GivesBackWhatWasSavedExceptTheFixedRows) {
    std::mt19937 random(7);
    for (int i = 0; i < 50; ++i) {
        PluginSettings saved, read;
        for (const SettingDescriptor& row : SettingDescriptors())
            saved.*row.value = static_cast<std::uint32_t>(random() >> random() % 32);
        EXPECT_TRUE(SaveSettings(Path().c_str(), saved) && LoadSettings(Path().c_str(), read));
        saved.PatchLevel = 17;
        saved.VersionNumber = 64;
        EXPECT_EQ(Changes(read), Changes(saved));
        EXPECT_TRUE(folder_.Get("a.ini").ends_with(std::string("\nVersionNumber = 64") + kLineEnd));
    }
}

// That what cannot be replaced stays whole is StoreFile's own test.
TEST_F(ConfigFile, TellsWhenItCannotBeReadOrWritten) {
    PluginSettings settings;
    settings.TransitionDelay = 12;
    FileError why = 0;
    EXPECT_FALSE(LoadSettings(Path().c_str(), settings, &why));
    EXPECT_NE(why, 0);
    EXPECT_EQ(Changes(settings), "TransitionDelay=12");
    folder_.Put("a.ini", "old");
    const auto save = [&] { return SaveSettings(Path().c_str(), settings); };
    const auto check = [&](bool saved, bool missed) {
        EXPECT_EQ(saved, !missed);
        EXPECT_EQ(folder_.Get("a.ini") == "old", missed);
    };
    EXPECT_GT(FailEachAllocation(save, check), 0);
    EXPECT_FALSE(SaveSettings(folder_.Path("a.ini/b/c.ini").c_str(), settings));
    EXPECT_TRUE(SaveSettings(folder_.Path("new/folder/b.ini").c_str(), settings));
}

} // namespace
} // namespace lumafold::test
