// The kinds of file that the page can make, as one table: what a kind is called, what it can hold, and who
// writes it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

struct OutputKindRow {
    const char* id; ///< as the page names it
    const char* name;
    const char* suffix; ///< with its dot
    const char* mediaType;
    bool trueColour; ///< whether frames of 24 bits can be kept
    bool shown;      ///< whether browsers play it
    std::vector<std::uint8_t> (*encode)(const Animation& animation, std::string& error);
};

std::span<const OutputKindRow> OutputKinds();

/// The row of that id, or null.
const OutputKindRow* FindOutputKind(std::string_view id);

/// The capability flags of a host that writes this kind.
std::uint32_t CapabilityFlagsOf(const OutputKindRow& kind);

} // namespace lumafold
