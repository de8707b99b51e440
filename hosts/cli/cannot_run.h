// Why a transition cannot run: settings files and --set may hold values with which an effect would never end.
#pragma once

#include <string>

#include "build/image_list.h"
#include "settings/settings.h"

namespace lumafold {

/// "Soft iris (ellipse) cannot run with TransitionIrisStep=0" for a row of the transition table on a canvas
/// of this size; "" when it can run.
std::string WhyCannotRun(std::int32_t row, const PluginSettings& settings, std::int32_t width,
                         std::int32_t height);

/// The same for the first row of a list that cannot run.
std::string WhyCannotRun(ImageList& list, const PluginSettings& settings, std::int32_t width,
                         std::int32_t height);

} // namespace lumafold
