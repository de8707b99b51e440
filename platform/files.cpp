#include "platform/files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string_view>

#include "platform/file_system.h"

namespace lumafold {
namespace {

using file_system::File;
using file_system::Kind;
using file_system::kNoFile;
using file_system::Opening;

/// The temporaries under way, for the signal handler, which may read no string but these addresses. As many
/// writers as have a place here are cleaned up after; a further one only loses that.
constexpr std::size_t kMostPending = 16;
std::atomic<const char*> pendingTemporaries[kMostPending];
static_assert(std::atomic<const char*>::is_always_lock_free);

/// Announces a path while it lives. Each writer has a place of its own, so that none clears another's.
class Pending : NonCopyable {
public:
    explicit Pending(const char* path) {
        for (std::atomic<const char*>& place : pendingTemporaries) {
            const char* free = nullptr;
            if (!place.compare_exchange_strong(free, path)) continue;
            place_ = &place;
            return;
        }
    }
    ~Pending() {
        if (place_ != nullptr) *place_ = nullptr;
    }

private:
    std::atomic<const char*>* place_ = nullptr;
};

/// What stands before the last name of a path, up to its separator.
std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of(kSeparators) + 1); // none is npos, which becomes 0
}

/// Writes a file down to the disk and closes it. What went wrong first.
FileError WriteAll(File file, FilePieces pieces) {
    FileError error = 0;
    for (std::size_t i = 0; error == 0 && i < pieces.size(); ++i)
        error = file_system::Write(file, pieces[i]);
    if (error == 0) error = file_system::Flush(file);
    const FileError closed = file_system::Close(file);
    return error != 0 ? error : closed;
}

/// A temporary file beside its target, announced to the signal handler and removed unless it took the
/// target's name.
class Temporary : NonCopyable {
public:
    explicit Temporary(const char* target) {
        for (int attempt = 0; attempt < 100 && error_ == EEXIST; ++attempt) {
            error_ = MakeName(target, attempt);
            if (error_ != 0) return;
            // Announced first: a signal in between then finds at worst a name that does not exist yet.
            pending_.emplace(path_);
            error_ = file_system::Open(path_, Opening::New, file_);
        }
        if (error_ != 0) pending_.reset();
    }
    ~Temporary() {
        if (file_ != kNoFile) file_system::Close(file_);
        if (pending_) file_system::Remove(path_);
    }

    FileError Fill(FilePieces pieces) {
        return error_ != 0 ? error_ : WriteAll(std::exchange(file_, kNoFile), pieces);
    }
    void TakeMode(std::uint32_t mode) {
        if (error_ == 0) file_system::TakeMode(path_, mode);
    }
    FileError TakeName(const char* target) {
        const FileError error = file_system::Replace(path_, target);
        if (error == 0) pending_.reset();
        return error;
    }

private:
    /// A name of eleven letters: where the target's folder can hold a file at all, the path is not too long.
    /// Its number differs from try to try, and by moment and place in memory from program to program, mostly.
    FileError MakeName(const char* target, int attempt) {
        constexpr std::size_t kNameBytes = sizeof("~123456.tmp");
        const std::string_view folder = FolderOf(target);
        if (folder.size() + kNameBytes > kPathBytes) return ENAMETOOLONG;
        folder.copy(path_, folder.size());
        const std::uint64_t seed = static_cast<std::uint64_t>(std::time(nullptr) + std::clock() + attempt) ^
                                   reinterpret_cast<std::uintptr_t>(this) << 8;
        // Neighbouring ones fall far apart.
        const auto number = static_cast<unsigned>(seed * 0x9E3779B97F4A7C15U >> 40);
        std::snprintf(path_ + folder.size(), kNameBytes, "~%06x.tmp", number);
        return 0;
    }

    char path_[kPathBytes];
    std::optional<Pending> pending_; ///< while there is a file to remove
    File file_ = kNoFile;
    FileError error_ = EEXIST;
};

FileError StoreStraight(const char* target, FilePieces pieces) {
    File file = kNoFile;
    const FileError error = file_system::Open(target, Opening::Overwrite, file);
    return error != 0 ? error : WriteAll(file, pieces);
}

FileError StoreBeside(const char* target, const file_system::Standing& before, FilePieces pieces) {
    Temporary temporary(target);
    // Before there is anything in it that others may not read.
    if (before.kind != Kind::Missing) temporary.TakeMode(before.mode);
    if (const FileError error = temporary.Fill(pieces)) return error;
    return temporary.TakeName(target);
}

} // namespace

bool FileExists(const char* path) {
    const Kind kind = file_system::Inspect(path).kind;
    return kind != Kind::Missing && kind != Kind::Folder;
}

InputFile::InputFile(const char* path) : error_(file_system::Open(path, Opening::Read, file_)) {}

InputFile::~InputFile() {
    if (file_ != kNoFile) file_system::Close(file_);
}

std::uint64_t InputFile::LikelyBytes() const {
    return file_ == kNoFile ? 0 : file_system::LikelyBytes(file_);
}

std::size_t InputFile::Read(void* into, std::size_t bytes) {
    std::size_t all = 0, got = 1;
    while (error_ == 0 && all < bytes && got != 0) {
        error_ = file_system::Read(file_, static_cast<std::uint8_t*>(into) + all, bytes - all, got);
        if (error_ == 0) all += got;
    }
    return all;
}

FileError InputFile::ReadRest(std::span<const std::uint8_t> before, Array<std::uint8_t>& bytes,
                              std::size_t most) {
    if (error_ != 0) return error_;
    if (LikelyBytes() > most || before.size() > most) return EFBIG;
    // One byte more than is likely there, to see the end at the first attempt.
    Array<std::uint8_t> read(std::max(before.size(), static_cast<std::size_t>(LikelyBytes())) + 1);
    if (!read) return ENOMEM;
    std::copy(before.begin(), before.end(), read.begin());
    std::size_t length = before.size();
    for (;;) {
        length += Read(read.data() + length, read.size() - length);
        if (error_ != 0) return error_;
        if (length > most) return EFBIG;
        if (length < read.size()) break;
        // Never beyond the byte that tells that there is too much.
        if (!read.Resize(std::min(std::max<std::size_t>(2 * length, 65536), most) + 1)) return ENOMEM;
    }
    read.Resize(length);
    bytes = std::move(read);
    return 0;
}

FileError LoadFile(const char* path, Array<std::uint8_t>& bytes, std::size_t most) {
    return InputFile(path).ReadRest({}, bytes, most);
}

FileError StoreFile(const char* path, FilePieces pieces) {
    if (file_system::Inspect(path).kind == Kind::Special) return StoreStraight(path, pieces);
    char target[kPathBytes];
    if (const FileError error = file_system::FollowLinks(path, target)) return error;
    const file_system::Standing before = file_system::Inspect(target);
    if (before.kind == Kind::Folder) return EISDIR;
    if (before.kind == Kind::ReadOnly) return EACCES;
    return StoreBeside(target, before, pieces);
}

void MakeFoldersAbove(const char* path) {
    const std::string_view above = FolderOf(path);
    if (above.size() >= kPathBytes) return;
    for (std::size_t at = 0; (at = above.find_first_of(kSeparators, at + 1)) != above.npos;) {
        if (path[at] == ':') continue; // what stands before it is a drive, and no folder
        char folder[kPathBytes] = {};
        above.copy(folder, at);
        if (file_system::Inspect(folder).kind == Kind::Missing) file_system::MakeFolder(folder);
    }
}

void RemovePendingTemporaries() noexcept {
    for (const std::atomic<const char*>& place : pendingTemporaries) {
        const char* path = place;
        if (path != nullptr) file_system::Remove(path);
    }
}

} // namespace lumafold
