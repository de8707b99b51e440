// Whole files in and out for programs: the house's file calls with strings and words for what went
// wrong.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/files.h"

namespace lumafold {

/// One line, without the path.
std::string FileErrorText(FileError error);

/// False leaves why in `error`: one line, without the path.
bool ReadWholeFile(const std::string& path, Array<std::uint8_t>& bytes, std::string& error);

/// The same of a file whose first bytes tell a kind that is known here. Of any other, and of a device that
/// never ends, no more than those is read.
bool ReadKnownFile(const std::string& path, Array<std::uint8_t>& bytes, std::string& error);

/// Replaces or creates the file as StoreFile does. False leaves why in `error`, and the target as it was.
bool WriteFileSafely(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error);
bool WriteFileSafely(const std::string& path, FilePieces pieces, std::string& error);

} // namespace lumafold
