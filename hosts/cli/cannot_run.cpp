#include "hosts/cli/cannot_run.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "hosts/cli/names.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

std::vector<const SettingDescriptor*> SettingsOfRow(std::int32_t row) {
    std::vector<const SettingDescriptor*> found;
    std::istringstream keys{std::string(TransitionSettings(row))};
    for (std::string key; keys >> key;) {
        for (const SettingDescriptor& setting : SettingDescriptors()) {
            if (setting.key == key) found.push_back(&setting);
        }
    }
    return found;
}

} // namespace

std::string WhyCannotRun(std::int32_t row, const PluginSettings& settings, std::int32_t width,
                         std::int32_t height) {
    if (FrameCount(row, settings, {width, height}) != 0) return "";
    // One setting, if its default alone would mend it; else all that the row reads.
    std::string all;
    for (const SettingDescriptor* setting : SettingsOfRow(row)) {
        const std::string text =
            std::string(setting->key) + "=" + ValueText(*setting, settings.*setting->value);
        PluginSettings mended = settings;
        mended.*setting->value = setting->defaultValue;
        if (FrameCount(row, mended, {width, height}) != 0) {
            all = text;
            break;
        }
        all += (all.empty() ? "" : " ") + text;
    }
    return std::string(TransitionName(row)) + " cannot run" + (all.empty() ? "" : " with " + all);
}

std::string WhyCannotRun(ImageList& list, const PluginSettings& settings, std::int32_t width,
                         std::int32_t height) {
    std::vector<std::int32_t> rows;
    ImageEntry entry;
    for (std::int32_t i = 0; i < list.Count(); ++i) {
        if (list.Read(i, entry)) rows.push_back(+entry.transition); // a value: the record is packed
    }
    // One picture alone gets the plain background beside it.
    if (list.Count() == 1) rows.push_back(list.DefaultTransition());
    for (const std::int32_t row : rows) {
        if (std::string why = WhyCannotRun(row, settings, width, height); !why.empty()) return why;
    }
    return "";
}

} // namespace lumafold
