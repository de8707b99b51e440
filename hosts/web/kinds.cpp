#include "hosts/web/kinds.h"

#include "settings/settings.h"
#if LUMAFOLD_WEBP
#include "codecs/webp_writer.h"
#endif

namespace lumafold {
namespace {

template <AnimationKind Kind>
std::vector<std::uint8_t> Encode(const Animation& animation, const EncodeOptions& options,
                                 std::string& error) {
    return EncodeAnimation(Kind, animation, error, {kUsualEffort, options.goOn});
}

#if LUMAFOLD_WEBP
std::vector<std::uint8_t> Webp(const Animation& animation, const EncodeOptions& options, std::string& error) {
    return EncodeWebp(animation, {options.quality}, error);
}
#endif

constexpr OutputKindRow kKinds[] = {
    {"gif", "GIF", ".gif", "image/gif", Colours::Indexed, false, true, &Encode<AnimationKind::Gif>},
    {"apng", "Animated PNG", ".png", "image/png", Colours::Any, false, true, &Encode<AnimationKind::Apng>},
#if LUMAFOLD_WEBP
    {"webp", "WebP", ".webp", "image/webp", Colours::UsuallyTrue, true, true, &Webp},
#endif
    {"mng", "MNG", ".mng", "video/x-mng", Colours::Any, false, false, &Encode<AnimationKind::Mng>},
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
