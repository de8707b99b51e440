// Words a person typed against the names the program knows: numbers, colours, transitions, palettes, keys,
// and the name that was probably meant.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings.h"

namespace lumafold {

/// The row of the settings table for a setting of PluginSettings.
const SettingDescriptor& DescriptorOf(std::uint32_t PluginSettings::*value);

/// The entries of a setting's drop-down list, in their order; none for other kinds.
std::vector<std::string_view> ChoicesOf(const SettingDescriptor& setting);

/// "2 to 20" as a person reads a setting's range; colours in hexadecimal.
std::string RangeText(const SettingDescriptor& setting);
/// A setting's value in its own notation.
std::string ValueText(const SettingDescriptor& setting, std::uint32_t value);

/// A whole number from 0 to 4294967295, decimal or 0x...; nothing for any other text.
std::optional<std::uint32_t> ParseNumber(std::string_view text);

/// A row of the TransitionTable by its number or by its display name, of which case, blanks, hyphens and
/// brackets do not count.
std::optional<std::int32_t> FindTransition(std::string_view text);

/// The display name of row `row`, which the table must have.
const char* TransitionName(std::int32_t row);

/// A fixed palette by its number or by its name, as transitions are.
std::optional<std::uint32_t> FindPalette(std::string_view text);

/// "R,G,B" in decimal or "#RRGGBB" as 0x00BBGGRR.
std::optional<std::uint32_t> ParseColour(std::string_view text);

/// Letters to insert, remove, replace or swap with their neighbour; case does not count.
int EditDistance(std::string_view one, std::string_view other);

/// The known name that is close to `word`, as a whole or word by word, or that has it in it; the first of the
/// nearest, "" when none is.
std::string_view NearestName(std::string_view word, std::span<const std::string_view> known);

/// ", did you mean ...?" for the end of an error line, or "".
std::string DidYouMean(std::string_view word, std::span<const std::string_view> known);
std::string DidYouMeanTransition(std::string_view word);
std::string DidYouMeanPalette(std::string_view word);
std::string DidYouMeanKey(std::string_view word);

} // namespace lumafold
