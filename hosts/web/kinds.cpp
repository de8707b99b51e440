#include "hosts/web/kinds.h"

#include "codecs/apng_writer.h"
#include "codecs/gif_writer.h"
#include "codecs/mng_writer.h"
#include "codecs/webp_writer.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

/// A writer that knows no quality.
template <auto Encode>
std::vector<std::uint8_t> Plain(const Animation& animation, std::optional<int>, std::string& error) {
    return Encode(animation, error);
}

#if LUMAFOLD_WEBP
std::vector<std::uint8_t> Webp(const Animation& animation, std::optional<int> quality, std::string& error) {
    return EncodeWebp(animation, {quality}, error);
}
#endif

constexpr OutputKindRow kKinds[] = {
    {"gif", "GIF", ".gif", "image/gif", Colours::Indexed, false, true, &Plain<EncodeGif>},
    {"apng", "Animated PNG", ".png", "image/png", Colours::Any, false, true, &Plain<EncodeApng>},
#if LUMAFOLD_WEBP
    {"webp", "WebP", ".webp", "image/webp", Colours::UsuallyTrue, true, true, &Webp},
#endif
    {"mng", "MNG", ".mng", "video/x-mng", Colours::Any, false, false, &Plain<EncodeMng>},
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
    return kHostTakesSupercompression | (kind.colours != Colours::Indexed ? kHostTakesTrueColour : 0);
}

} // namespace lumafold
