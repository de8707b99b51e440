// Where an animation goes: which kind of output a name means, what it can take, and writing it, whole or not
// at all.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "hosts/cli/recording_host.h"

namespace lumafold {

enum class OutputKind { Gif, Apng, Mng, Folder };

/// The suffix of a file's name with its dot, in small letters.
std::string LowerSuffix(const std::string& path);

/// Nothing, with `error` in one line, for a name whose kind is not known.
std::optional<OutputKind> ClassifyOutput(const std::string& path, std::string& error);

/// The capability flags of a host that writes this kind.
std::uint32_t CapabilityFlags(OutputKind kind);

/// Why nothing can be written there, as far as it can be known before; "" when nothing speaks against it.
std::string WhyNotWritable(const std::string& path, OutputKind kind);
std::string WhyNoFileCanStandAt(const std::string& path);

/// False with `error` in one line; what stood there before is then still there. `bytes` is what was written.
bool WriteOutput(const std::string& path, OutputKind kind, const RecordingHost& host, std::uint64_t& bytes,
                 std::string& error);

/// How many bytes that would write; false with `error` in one line where it could not.
bool MeasureOutput(OutputKind kind, const RecordingHost& host, std::uint64_t& bytes, std::string& error);

} // namespace lumafold
