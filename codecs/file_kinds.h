// What animations are written as, by name, and how files of chunks begin.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace lumafold {

inline constexpr std::string_view kPngSignature("\x89PNG\r\n\x1A\n", 8),
    kMngSignature("\x8AMNG\r\n\x1A\n", 8);

/// Whether `text` stands at `offset` of a file.
bool HasAt(std::span<const std::uint8_t> file, std::size_t offset, std::string_view text);

/// What animations are written as.
enum class AnimationKind { Gif, Apng, Mng };

/// By the suffix of a name or path: .gif, .png or .apng, .mng, in letters of any size.
std::optional<AnimationKind> AnimationKindOf(std::string_view name);

} // namespace lumafold
