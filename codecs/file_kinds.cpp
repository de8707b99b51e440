#include "codecs/file_kinds.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace lumafold {
namespace {

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

bool HasAt(std::span<const std::uint8_t> file, std::size_t offset, std::string_view text) {
    return file.size() >= offset + text.size() &&
           std::memcmp(file.data() + offset, text.data(), text.size()) == 0;
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
