// The few calls of the operating system that files.cpp and folders.cpp are made of. For platform/ alone.
#pragma once

#include "platform/files.h"

namespace lumafold::file_system {

/// A descriptor or a handle.
using File = std::intptr_t;
inline constexpr File kNoFile = -1;

enum class Opening {
    Read,
    New,       ///< fails with EEXIST when there is something of that name
    Overwrite, ///< empties what is there
};
FileError Open(const char* path, Opening opening, File& file);
FileError Read(File file, void* into, std::size_t most, std::size_t& got);
/// Writes all of it.
FileError Write(File file, std::span<const std::uint8_t> bytes);
/// Down to the disk, where the file is on one.
FileError Flush(File file);
FileError Close(File file);
std::uint64_t LikelyBytes(File file);

enum class Kind { Missing, Ordinary, ReadOnly, Folder, Special };
struct Standing {
    Kind kind = Kind::Missing;
    std::uint32_t mode = 0; ///< the system's own bits
};
/// What stands there, at the end of any link.
Standing Inspect(const char* path);
void TakeMode(const char* path, std::uint32_t mode);

/// The path behind a link, through all of them, whether or not something stands there; else `path` itself.
FileError FollowLinks(const char* path, char (&target)[kPathBytes]);

FileError Replace(const char* from, const char* target);
void Remove(const char* path) noexcept;
void MakeFolder(const char* path);

/// A person's own application-data folder; false where the system knows none, with `folder` as it was.
bool ApplicationDataFolder(char (&folder)[kPathBytes]);

} // namespace lumafold::file_system
