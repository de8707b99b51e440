// Whole files in and out. Writing goes to a temporary beside the target that takes its name only when
// complete, so an interrupted run leaves the old file or the new one, never half of one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumafold {

/// False leaves why in `error`: one line, without the path.
bool ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes, std::string& error);

/// Replaces or creates the file; what is no ordinary file (a pipe, a device) is written straight to. False
/// leaves why in `error`, and the target as it was.
bool WriteFileSafely(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error);

/// Removes the temporary of a write under way, if there is one. Safe in a signal handler, which must end the
/// program afterwards.
void RemovePendingTemporary() noexcept;

} // namespace lumafold
