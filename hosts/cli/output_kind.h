// The kinds of output there are, with the names and suffixes that choose them.
#pragma once

#include <optional>
#include <string>

namespace lumafold {

enum class OutputKind { Gif, Apng, Mng, Webp, Y4m, Folder };

/// What --format and suffixes mean, "gif" for one; none for a word that no kind has.
std::optional<OutputKind> OutputKindNamed(const std::string& name);

/// The names that --format takes, with `separator` between them, and the suffixes with their dots.
std::string FormatNames(const std::string& separator);
std::string OutputSuffixes();

/// By `format` where there is one, else by the name: a folder where it ends as one's or is there as one, else
/// by its suffix. "" is a GIF. Throws Failure, with "-o" in front, for a name whose kind is not known.
OutputKind KindOfOutput(const std::string& path, std::optional<OutputKind> format);

/// The longest that a file of this kind can show one frame for, in hundredths of a second.
std::int32_t LongestDelay(OutputKind kind);

/// The capability flags of a host that writes this kind.
std::uint32_t CapabilityFlags(OutputKind kind);

} // namespace lumafold
