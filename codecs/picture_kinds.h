// The kinds of picture files there are: what they are called, how their files are named and begin, and which
// of them this build reads. Messages, file dialogs and decoding go by this one list.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "image/dib.h"

namespace lumafold {

struct DecodeLimits;

struct PictureKind {
    std::string_view name;
    std::string_view suffixes; ///< small letters, each with its dot, a space between two
    bool (*begins)(std::span<const std::uint8_t> file);
    OwnedDib (*decode)(std::span<const std::uint8_t> file, const DecodeLimits& limits); ///< null: not here

    bool Readable() const { return decode != nullptr; }
};

std::span<const PictureKind> PictureKinds();

/// By the file's first bytes, of which no kind needs more than these; null for none of the list.
inline constexpr std::size_t kKindBytes = 12;
const PictureKind* PictureKindOf(std::span<const std::uint8_t> file);

/// What is wrong with a file of no kind that this build knows, in one line.
std::string UnknownKindText();

/// The names of what this build reads: "PNG, JPEG or GIF" where `joint` is "or".
std::string ReadablePictureKinds(std::string_view joint);

} // namespace lumafold
