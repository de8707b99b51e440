#include "hosts/cli/names.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "image/dib.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string LowerAll(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

std::vector<std::string_view> TransitionNames() {
    std::vector<std::string_view> names;
    names.reserve(TransitionTable.size());
    for (const TransitionRow& row : TransitionTable)
        names.emplace_back(row.name);
    return names;
}

std::vector<std::string_view> PaletteNames() {
    return ChoicesOf(DescriptorOf(&PluginSettings::TransitionPalette));
}

bool IsOfWord(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

/// "Soft iris (ellipse)" as soft, iris, ellipse.
std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words;
    bool inside = false;
    for (const char letter : text) {
        if (!IsOfWord(letter)) {
            inside = false;
            continue;
        }
        if (!inside) words.emplace_back();
        words.back() += Lower(letter);
        inside = true;
    }
    return words;
}

// A number stands for itself where there is a name for it.
std::optional<std::uint32_t> FindName(std::string_view text, std::span<const std::string_view> names) {
    if (const auto number = ParseNumber(text)) return *number < names.size() ? number : std::nullopt;
    const std::vector<std::string> words = WordsOf(text);
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](std::string_view name) { return WordsOf(name) == words; });
    if (found == names.end()) return std::nullopt;
    return static_cast<std::uint32_t>(found - names.begin());
}

/// The number all of `text` is, when it is one byte's.
std::optional<unsigned> ParseByte(std::string_view text, int base) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{} || end != text.data() + text.size() || value > 255) return std::nullopt;
    return value;
}

/// How far a word may be from what was meant. Of three letters, one that is wrong leaves too little to tell.
int MostDistance(std::string_view word) {
    return word.size() < 4 ? 0 : 1 + static_cast<int>(word.size()) / 4;
}

/// From each word to the nearest of the name's; nothing when one of them is near none.
std::optional<int> WordDistance(const std::vector<std::string>& words, std::string_view name) {
    if (words.empty()) return std::nullopt;
    const std::vector<std::string> known = WordsOf(name);
    int sum = 0;
    for (const std::string& word : words) {
        int nearest = MostDistance(word) + 1;
        for (const std::string& other : known)
            nearest = std::min(nearest, EditDistance(word, other));
        if (nearest > MostDistance(word)) return std::nullopt;
        sum += nearest;
    }
    return sum;
}

// A part of the name is as good a hint as a slip of the finger: "IrisStep", "soft iris".
std::string_view FirstNameAround(std::string_view word, std::span<const std::string_view> known) {
    if (word.size() < 4) return {};
    const std::string part = LowerAll(word);
    for (const std::string_view name : known) {
        if (LowerAll(name).find(part) != std::string::npos) return name;
    }
    return {};
}

} // namespace

const SettingDescriptor& DescriptorOf(std::uint32_t PluginSettings::*value) {
    const auto all = SettingDescriptors();
    return *std::find_if(all.begin(), all.end(), [&](const auto& setting) { return setting.value == value; });
}

std::vector<std::string_view> ChoicesOf(const SettingDescriptor& setting) {
    std::vector<std::string_view> choices;
    std::string_view rest = setting.choices;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        choices.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(rest.size(), end + 1));
    }
    return choices;
}

std::string ValueText(const SettingDescriptor& setting, std::uint32_t value) {
    if (setting.kind != SettingKind::Colour) return std::to_string(value);
    char text[16];
    std::snprintf(text, sizeof(text), "0x%06X", static_cast<unsigned>(value));
    return text;
}

std::string RangeText(const SettingDescriptor& setting) {
    if (setting.kind == SettingKind::Fixed) return "always " + std::to_string(setting.minimum);
    return ValueText(setting, setting.minimum) + " to " + ValueText(setting, setting.maximum);
}

std::optional<std::uint32_t> ParseNumber(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<std::int32_t> FindTransition(std::string_view text) {
    const auto row = FindName(text, TransitionNames());
    if (!row) return std::nullopt;
    return static_cast<std::int32_t>(*row);
}

const char* TransitionName(std::int32_t row) { return TransitionTable[static_cast<std::size_t>(row)].name; }

std::optional<std::uint32_t> FindPalette(std::string_view text) { return FindName(text, PaletteNames()); }

std::optional<std::uint32_t> ParseColour(std::string_view text) {
    const bool hexadecimal = text.starts_with('#');
    if (hexadecimal && text.size() != 7) return std::nullopt;
    std::optional<unsigned> parts[3];
    for (std::size_t i = 0; i < 3; ++i) {
        if (hexadecimal) {
            parts[i] = ParseByte(text.substr(1 + 2 * i, 2), 16);
        } else {
            const std::size_t comma = i < 2 ? text.find(',') : text.size();
            if (comma == std::string_view::npos) return std::nullopt;
            parts[i] = ParseByte(text.substr(0, comma), 10);
            text.remove_prefix(std::min(text.size(), comma + 1));
        }
        if (!parts[i]) return std::nullopt;
    }
    return MakeColour(*parts[0], *parts[1], *parts[2]);
}

int EditDistance(std::string_view one, std::string_view other) {
    const std::size_t width = other.size() + 1;
    std::vector<int> table((one.size() + 1) * width);
    const auto at = [&](std::size_t i, std::size_t j) -> int& { return table[i * width + j]; };
    for (std::size_t i = 0; i <= one.size(); ++i)
        at(i, 0) = static_cast<int>(i);
    for (std::size_t j = 0; j <= other.size(); ++j)
        at(0, j) = static_cast<int>(j);
    for (std::size_t i = 1; i <= one.size(); ++i) {
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const char a = Lower(one[i - 1]), b = Lower(other[j - 1]);
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + (a == b ? 0 : 1)});
            const bool swapped = i > 1 && j > 1 && a == Lower(other[j - 2]) && b == Lower(one[i - 2]);
            if (swapped) at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    }
    return at(one.size(), other.size());
}

std::string_view NearestName(std::string_view word, std::span<const std::string_view> known) {
    // A long word would cost a long table, and is no slip of a short name.
    if (word.empty() || word.size() > 100) return {};
    const std::vector<std::string> words = WordsOf(word);
    std::string_view nearest;
    int nearestDistance = MostDistance(word) + 1;
    for (const std::string_view name : known) {
        const int whole = EditDistance(word, name);
        const int distance = std::min(whole, WordDistance(words, name).value_or(whole));
        if (distance >= nearestDistance) continue;
        nearest = name;
        nearestDistance = distance;
    }
    return nearest.empty() ? FirstNameAround(word, known) : nearest;
}

std::string DidYouMean(std::string_view word, std::span<const std::string_view> known) {
    const std::string_view nearest = NearestName(word, known);
    return nearest.empty() ? "" : ", did you mean \"" + std::string(nearest) + "\"?";
}

std::string DidYouMeanTransition(std::string_view word) { return DidYouMean(word, TransitionNames()); }

std::string DidYouMeanPalette(std::string_view word) { return DidYouMean(word, PaletteNames()); }

std::string DidYouMeanKey(std::string_view word) {
    std::vector<std::string_view> keys;
    for (const SettingDescriptor& setting : SettingDescriptors())
        keys.emplace_back(setting.key);
    return DidYouMean(word, keys);
}

} // namespace lumafold
