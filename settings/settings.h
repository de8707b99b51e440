// All options under their configuration keys, with their defaults, and the table that describes them. Whoever
// builds passes a set on; nothing keeps one of its own.
#pragma once

#include <cstdint>
#include <span>

namespace lumafold {

struct PluginSettings {
#define LUMAFOLD_SETTING(key, kind, value, ...) std::uint32_t key = value;
#include "settings/descriptors.def"
};

enum class SettingKind { Switch, Number, Colour, Choice, Fixed };
/// "switch", "number", "colour", "choice" or "fixed", as lists for other programs name it.
const char* NameOf(SettingKind kind);

/// Whose control edits a setting.
enum class SettingDialog { Main, Advanced, Nowhere };

/// Ranges bind dialogs; a settings file or a command line may hold any 32-bit number.
struct SettingDescriptor {
    const char* key;
    SettingKind kind;
    std::uint32_t PluginSettings::*value;
    std::uint32_t defaultValue, minimum, maximum, start;
    const char* label;
    SettingDialog dialog;
    int controlId; ///< in the Advanced dialog, 0 where it has none
    const char* choices;
    const char* meaning;
};

/// The table, in the order of the settings file.
std::span<const SettingDescriptor> SettingDescriptors();

/// Bits of a host's capability flags.
inline constexpr std::uint32_t kHostTakesSupercompression = 1;
inline constexpr std::uint32_t kHostTakesTrueColour = 2;

/// Turns off what the host cannot take.
void ApplyCapabilities(PluginSettings& settings, std::uint32_t capabilityFlags);

} // namespace lumafold
