#include "settings/settings.h"

#include "resources/texts/strings.h"

namespace lumafold {
namespace {

constexpr SettingDescriptor kDescriptors[] = {
#define LUMAFOLD_SETTING(key, kind, value, minimum, maximum, start, label, dialog, id, column, line,         \
                         choices, meaning)                                                                   \
    {#key,                                                                                                   \
     SettingKind::kind,                                                                                      \
     &PluginSettings::key,                                                                                   \
     value,                                                                                                  \
     minimum,                                                                                                \
     maximum,                                                                                                \
     start,                                                                                                  \
     label,                                                                                                  \
     SettingDialog::dialog,                                                                                  \
     id,                                                                                                     \
     choices,                                                                                                \
     meaning},
#include "settings/descriptors.def"
};

} // namespace

const char* NameOf(SettingKind kind) {
    constexpr const char* kNames[] = {"switch", "number", "colour", "choice", "fixed"};
    return kNames[static_cast<int>(kind)];
}

std::span<const SettingDescriptor> SettingDescriptors() { return kDescriptors; }

void ApplyCapabilities(PluginSettings& settings, std::uint32_t capabilityFlags) {
    if ((capabilityFlags & kHostTakesSupercompression) == 0) settings.Supercompress = 0;
    if ((capabilityFlags & kHostTakesTrueColour) == 0) settings.TransitionTruecolour = 0;
}

} // namespace lumafold
