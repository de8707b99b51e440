// The kinds of file that the page can make, as one table: what a kind is called, what it can hold, and who
// writes it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codecs/animation_writer.h"

namespace lumafold {

/// Frames of at most 256 colours; those or of 24 bits; or all that, and 24 bits unless a palette is asked
/// for.
enum class Colours { Indexed, Any, UsuallyTrue };

struct EncodeOptions {
    std::optional<int> quality; ///< 0 to 100; without one every colour is kept
    FrameProgress goOn;         ///< not of a WebP, which is packed as a whole
};

struct OutputKindRow {
    const char* id; ///< as the page names it
    const char* name;
    const char* suffix; ///< with its dot
    const char* mediaType;
    Colours colours;
    bool lossy; ///< whether there is a quality to choose
    bool shown; ///< whether browsers play it
    /// The whole file, or nothing with `error` in one line.
    std::vector<std::uint8_t> (*encode)(const Animation& animation, const EncodeOptions& options,
                                        std::string& error);
};

std::span<const OutputKindRow> OutputKinds();

/// The row of that id, or null.
const OutputKindRow* FindOutputKind(std::string_view id);

/// The capability flags of a host that writes this kind.
std::uint32_t CapabilityFlagsOf(const OutputKindRow& kind);

} // namespace lumafold
