// Files as the house reads and writes them. What is written takes its name only when all of it is on the
// disk, so whatever happens leaves the old file or the new one. No exceptions; failure is an error number.
// Names are UTF-8 on Windows, and elsewhere the bytes that the system has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/allocation.h"
#include "platform/non_copyable.h"

namespace lumafold {

/// 0, or what went wrong as <cerrno> numbers it, on every system.
using FileError = int;

#ifdef _WIN32
inline constexpr char kFolderSeparator = '\\';
/// What a name can stand behind.
inline constexpr char kSeparators[] = "\\/:";
/// Longest path with its zero.
inline constexpr std::size_t kPathBytes = 2048;
#else
inline constexpr char kFolderSeparator = '/';
inline constexpr char kSeparators[] = "/";
inline constexpr std::size_t kPathBytes = 4096;
#endif

/// Whether there is such a file; a folder is none.
bool FileExists(const char* path);

/// A file open for reading while the object lives.
class InputFile : NonCopyable {
public:
    explicit InputFile(const char* path);
    ~InputFile();

    /// Why it could not be opened or read, 0 so far.
    FileError Error() const { return error_; }
    /// How long the system says it is; 0 where it does not know.
    std::uint64_t LikelyBytes() const;
    /// Reads on; what it got is less than `bytes` only at the end and after an error.
    std::size_t Read(void* into, std::size_t bytes);
    /// Reads on to the end. `bytes` is what was read `before` and the rest, of which there may be `most` in
    /// all: EFBIG when there is more. A failure leaves `bytes` as it was.
    FileError ReadRest(std::span<const std::uint8_t> before, Array<std::uint8_t>& bytes, std::size_t most);

private:
    std::intptr_t file_ = -1;
    FileError error_ = 0;
};

/// The whole file, which may have `most` bytes; EFBIG when it has more. `bytes` is untouched by a failure.
FileError LoadFile(const char* path, Array<std::uint8_t>& bytes, std::size_t most);

/// What a file is to hold, piece after piece.
using FilePieces = std::span<const std::span<const std::uint8_t>>;

/// Replaces or creates the file and keeps its mode; a link stays a link to it. A file without write
/// permission is left alone, even by those whom the system would let. What is no ordinary file (a pipe, a
/// device) is written straight to. On failure the target is as it was.
FileError StoreFile(const char* path, FilePieces pieces);

/// Makes the folders in front of the last name of `path`, as far as they are missing. Whether that worked is
/// for the writer of the file to find out.
void MakeFoldersAbove(const char* path);

/// Removes the temporaries of all StoreFile calls under way. Safe in a signal handler, which must end the
/// program afterwards.
void RemovePendingTemporaries() noexcept;

} // namespace lumafold
