// Which kind a file is of, by its first bytes or by its name.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace lumafold {

enum class FileKind { Png, Jpeg, Gif, Bmp, Mng };

/// No file needs more of its beginning than this to tell its kind.
inline constexpr std::size_t kKindBytes = 12;
std::optional<FileKind> KindOf(std::span<const std::uint8_t> firstBytes);

inline constexpr std::string_view kPngSignature("\x89PNG\r\n\x1A\n", 8),
    kMngSignature("\x8AMNG\r\n\x1A\n", 8);

/// What animations are written as.
enum class AnimationKind { Gif, Apng, Mng };

/// By the suffix of a name or path: .gif, .png or .apng, .mng, in letters of any size.
std::optional<AnimationKind> AnimationKindOf(std::string_view name);

} // namespace lumafold
