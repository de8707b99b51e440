#include "settings/config_file.h"

#include <charconv>
#include <cstdio>
#include <cstring>

#include "platform/machine.h"
#include "settings/text_lines.h"

namespace lumafold {
namespace {

/// The row that a key stands for: the first whose name begins with it, and so the first of all for none.
const SettingDescriptor* FindRow(const char* key, std::size_t length) {
    for (const SettingDescriptor& row : SettingDescriptors()) {
        if (row.kind != SettingKind::Fixed && std::strncmp(row.key, key, length) == 0) return &row;
    }
    return nullptr;
}

/// Digits up to the first that is none, modulo 2^32.
std::uint32_t NumberAt(const char* text) {
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    std::uint32_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number * 10 + static_cast<std::uint32_t>(*text - '0');
    return negative ? 0 - number : number;
}

void TakeLine(char* line, PluginSettings& settings) {
    if (*line == ';') return;
    char* end = line;
    // Bytes of 128 and above are letters like any other, whatever the sign of a char is here.
    while (static_cast<unsigned char>(*end) >= ' ')
        ++end;
    *end = 0;
    const std::size_t keyLength = std::strcspn(line, " =");
    const SettingDescriptor* row = FindRow(line, keyLength);
    if (row == nullptr) return;
    const char* value = line + keyLength;
    for (const char* between : {" ", "=", " "})
        value += std::strspn(value, between);
    settings.*row->value = NumberAt(value);
}

void AddHeader(LineWriter& lines) {
    // "Sun Nov 15 09:53:13 2026": the same in every language.
    const std::tm now = LocalTimeNow();
    constexpr char kDays[] = "SunMonTueWedThuFriSat", kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
    char time[80];
    std::snprintf(time, sizeof(time), "%.3s %.3s%3d %.2d:%.2d:%.2d %d", kDays + 3 * now.tm_wday,
                  kMonths + 3 * now.tm_mon, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec,
                  1900 + now.tm_year);
    lines.Line({";Brackenfield animtion plugin configuration file"});
    lines.Line({";Edit this at your own risk"});
    lines.Line({";Last updated ", time});
    lines.Line({";"}); // an empty line would be read as a setting
    lines.Line({"[PlugIn]"});
}

void AddRow(LineWriter& lines, const SettingDescriptor& row, const PluginSettings& settings) {
    const std::uint32_t value = row.kind == SettingKind::Fixed ? row.defaultValue : settings.*row.value;
    char digits[16] = "";
    std::to_chars(digits, digits + sizeof(digits) - 1, value);
    lines.Line({row.key, " = ", digits});
}

/// Tells `why` and whether that is nothing.
bool Outcome(FileError error, FileError* why) {
    if (why != nullptr) *why = error;
    return error == 0;
}

} // namespace

bool LoadSettings(const char* path, PluginSettings& settings, FileError* why) {
    LineReader lines(path);
    PluginSettings read = settings;
    char line[kLineBytes];
    while (lines.Next(line))
        TakeLine(line, read);
    if (lines.Error() == 0) settings = read;
    return Outcome(lines.Error(), why);
}

bool SaveSettings(const char* path, const PluginSettings& settings, FileError* why) {
    LineWriter lines;
    AddHeader(lines);
    for (const SettingDescriptor& row : SettingDescriptors())
        AddRow(lines, row, settings);
    return Outcome(lines.Store(path), why);
}

} // namespace lumafold
