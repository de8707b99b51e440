#include "codecs/picture_kinds.h"

#include <algorithm>

#include "codecs/decode_common.h"
#include "codecs/file_kinds.h"

namespace lumafold {
namespace {

using File = std::span<const std::uint8_t>;

bool BeginsPng(File file) { return HasAt(file, 0, kPngSignature); }
bool BeginsJpeg(File file) { return HasAt(file, 0, "\xFF\xD8\xFF"); }
bool BeginsGif(File file) { return HasAt(file, 0, "GIF87a") || HasAt(file, 0, "GIF89a"); }
bool BeginsBmp(File file) { return HasAt(file, 0, "BM"); }
bool BeginsWebp(File file) { return HasAt(file, 0, "RIFF") && HasAt(file, 8, "WEBP"); }
/// Offsets of 4 bytes or of 8, either end first.
bool BeginsTiff(File file) {
    constexpr std::string_view kStarts[] = {{"II*\0", 4}, {"MM\0*", 4}, {"II+\0", 4}, {"MM\0+", 4}};
    return std::any_of(std::begin(kStarts), std::end(kStarts),
                       [&](std::string_view start) { return HasAt(file, 0, start); });
}
/// A file of boxes names what its first one is for.
bool HasBrand(File file, std::initializer_list<std::string_view> brands) {
    return HasAt(file, 4, "ftyp") && std::any_of(brands.begin(), brands.end(), [&](std::string_view brand) {
               return HasAt(file, 8, brand);
           });
}
bool BeginsAvif(File file) { return HasBrand(file, {"avif", "avis"}); }
bool BeginsHeic(File file) {
    return HasBrand(file, {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1"});
}

#if !LUMAFOLD_WEBP
constexpr decltype(PictureKind::decode) DecodeWebp = nullptr;
#endif
#if !LUMAFOLD_TIFF
constexpr decltype(PictureKind::decode) DecodeTiff = nullptr;
#endif
#if !LUMAFOLD_HEIF
constexpr decltype(PictureKind::decode) DecodeHeif = nullptr;
#endif

constexpr PictureKind kKinds[] = {
    {"PNG", ".png .apng", BeginsPng, DecodePng}, {"JPEG", ".jpg .jpeg .jpe .jfif", BeginsJpeg, DecodeJpeg},
    {"GIF", ".gif", BeginsGif, DecodeGif},       {"BMP", ".bmp .dib", BeginsBmp, DecodeBmp},
    {"WebP", ".webp", BeginsWebp, DecodeWebp},   {"TIFF", ".tif .tiff", BeginsTiff, DecodeTiff},
    {"AVIF", ".avif", BeginsAvif, DecodeHeif},   {"HEIC", ".heic .heif .hif", BeginsHeic, DecodeHeif},
};

} // namespace

std::span<const PictureKind> PictureKinds() { return kKinds; }

const PictureKind* PictureKindOf(File file) {
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [&](const PictureKind& one) { return one.begins(file); });
    return kind == std::end(kKinds) ? nullptr : kind;
}

std::string UnknownKindText() { return "this is no " + ReadablePictureKinds("or") + " picture"; }

std::string ReadablePictureKinds(std::string_view joint) {
    const auto count =
        std::count_if(std::begin(kKinds), std::end(kKinds), [](auto& kind) { return kind.Readable(); });
    std::string names;
    std::ptrdiff_t place = 0;
    for (const PictureKind& kind : kKinds) {
        if (!kind.Readable()) continue;
        if (place > 0) names.append(place + 1 < count ? ", " : " ").append(place + 1 < count ? "" : joint);
        if (place > 0 && place + 1 == count) names += ' ';
        names += kind.name;
        ++place;
    }
    return names;
}

} // namespace lumafold
