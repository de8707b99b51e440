// Scripts that run the program unattended: their text taken apart, each step checked as far as that needs no
// window. docs/desktop-host.md tells what the steps do.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumafold {

struct ScriptStep {
    int line; ///< in the script's text, from 1
    std::string verb;
    std::vector<std::string> words;
};

/// A step a line: words parted by blanks, in quotes where they hold some; from # on a line says nothing. A
/// step that stands for others is replaced by them. False with `error` as "line 3: what is wrong".
bool ParseScript(std::string_view text, std::vector<ScriptStep>& steps, std::string& error);

/// The step as its line had it, for reports.
std::string StepText(const ScriptStep& step);

/// A control's number: itself, or that of the setting with this key.
std::optional<int> ControlNumber(const std::string& word);
/// A whole number, all of the word.
std::optional<int> WholeNumber(const std::string& word);
/// "#RRGGBB" as 0x00BBGGRR.
std::optional<std::uint32_t> ColourNumber(const std::string& word);

} // namespace lumafold
