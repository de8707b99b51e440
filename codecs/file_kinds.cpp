#include "codecs/file_kinds.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace lumafold {
namespace {

constexpr struct {
    std::string_view bytes;
    FileKind kind;
} kSignatures[] = {{kPngSignature, FileKind::Png},   {kMngSignature, FileKind::Mng},
                   {"\xFF\xD8\xFF", FileKind::Jpeg}, {"GIF87a", FileKind::Gif},
                   {"GIF89a", FileKind::Gif},        {"BM", FileKind::Bmp}};

constexpr struct {
    std::string_view suffix;
    AnimationKind kind;
} kSuffixes[] = {{".gif", AnimationKind::Gif},
                 {".png", AnimationKind::Apng},
                 {".apng", AnimationKind::Apng},
                 {".mng", AnimationKind::Mng}};

bool IsLetter(char small, char letter) {
    return letter == small || (letter >= 'A' && letter <= 'Z' && (letter | 0x20) == small);
}

} // namespace

std::optional<FileKind> KindOf(std::span<const std::uint8_t> firstBytes) {
    for (const auto& [bytes, kind] : kSignatures) {
        if (firstBytes.size() >= bytes.size() &&
            std::memcmp(firstBytes.data(), bytes.data(), bytes.size()) == 0)
            return kind;
    }
    return std::nullopt;
}

std::optional<AnimationKind> AnimationKindOf(std::string_view name) {
    name.remove_prefix(std::min(name.find_last_of("/\\") + 1, name.size()));
    for (const auto& [suffix, kind] : kSuffixes) {
        // A name that is nothing but a suffix has none.
        if (name.size() > suffix.size() &&
            std::equal(suffix.begin(), suffix.end(), name.end() - std::ssize(suffix), IsLetter))
            return kind;
    }
    return std::nullopt;
}

} // namespace lumafold
