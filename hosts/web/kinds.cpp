#include "hosts/web/kinds.h"

#include "codecs/apng_writer.h"
#include "codecs/gif_writer.h"
#include "codecs/mng_writer.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

constexpr OutputKindRow kKinds[] = {
    {"gif", "GIF", ".gif", "image/gif", false, true, &EncodeGif},
    {"apng", "Animated PNG", ".png", "image/png", true, true, &EncodeApng},
    {"mng", "MNG", ".mng", "video/x-mng", true, false, &EncodeMng},
};

} // namespace

std::span<const OutputKindRow> OutputKinds() { return kKinds; }

const OutputKindRow* FindOutputKind(std::string_view id) {
    for (const OutputKindRow& kind : kKinds) {
        if (kind.id == id) return &kind;
    }
    return nullptr;
}

std::uint32_t CapabilityFlagsOf(const OutputKindRow& kind) {
    return kHostTakesSupercompression | (kind.trueColour ? kHostTakesTrueColour : 0);
}

} // namespace lumafold
