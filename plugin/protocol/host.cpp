#include "plugin/protocol/host.h"

#include <cstring>

#include "lumafold_version.h"

namespace lumafold {

const char kDescriptiveComment[] = "CREATED BY...\r\n"
                                   "\r\n"
                                   "This animation was created by Brackenfield' Ravelin Professional or "
                                   "Ravelin Motion and the Lumafold plugin.\r\n"
                                   "\r\n"
                                   "See\r\n"
                                   "\r\n"
                                   "    " LUMAFOLD_WEB_ADDRESS "\r\n"
                                   "\r\n"
                                   "for more information.";

void FillPluginParams(PluginParams& params) {
    auto* bytes = reinterpret_cast<char*>(&params);
    const std::uint32_t size = params.size;
    std::memset(bytes, 0, size);
    params.size = size;
    params.version = kInterfaceVersion;
    std::memcpy(params.name, kPluginName, sizeof(kPluginName));
    // Written whole whatever the size says: the host must have room for it.
    std::memcpy(bytes + offsetof(PluginParams, notice), LUMAFOLD_NOTICE, sizeof(LUMAFOLD_NOTICE));
}

} // namespace lumafold
