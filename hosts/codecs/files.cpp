#include "hosts/codecs/files.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <random>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace lumafold {
namespace {

namespace fs = std::filesystem;

/// A signal handler may read no string, only this address.
std::atomic<const char*> pendingTemporary{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free);

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

std::string SystemText(int code) {
    switch (code) {
    case ENOENT:
        return "there is no such file or folder";
    case EACCES:
    case EPERM:
        return "permission denied";
    case EISDIR:
        return "this is a folder";
    case ENOSPC:
        return "the disk is full";
    default:
        return std::generic_category().message(code);
    }
}

/// Open for writing, and only if there was no such file before; null with errno otherwise.
std::FILE* CreateNew(const std::string& path) {
#ifdef _WIN32
    const int file = _open(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
    return file < 0 ? nullptr : _fdopen(file, "wb");
#else
    const int file = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    return file < 0 ? nullptr : fdopen(file, "wb");
#endif
}

/// Down to the disk, where the system offers that: a name must not be there before its bytes are.
bool WriteOut(std::FILE* file, std::span<const std::uint8_t> bytes) {
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) return false;
    if (std::fflush(file) != 0) return false;
#ifndef _WIN32
    if (fsync(fileno(file)) != 0 && errno != EINVAL && errno != EROFS) return false;
#endif
    return true;
}

/// A temporary file beside its target, announced to the signal handler and removed unless it took the
/// target's name.
class Temporary {
public:
    explicit Temporary(const fs::path& target) {
        std::random_device random;
        for (int attempt = 0; attempt < 100; ++attempt) {
            path_ = target.string() + "." + std::to_string(random()) + ".tmp";
            // Announced first: a signal in between then finds at worst a name that does not exist yet.
            pendingTemporary = path_.c_str();
            file_.reset(CreateNew(path_));
            if (file_ != nullptr) return;
            pendingTemporary = nullptr;
            if (errno != EEXIST) return;
        }
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary() {
        if (pendingTemporary == nullptr) return;
        file_.reset();
        std::remove(path_.c_str());
        pendingTemporary = nullptr;
    }

    std::FILE* File() const { return file_.get(); }
    bool Close() { return std::fclose(file_.release()) == 0; }
    void TakeName(const fs::path& target, std::error_code& failure) {
        fs::rename(path_, target, failure);
        if (!failure) pendingTemporary = nullptr;
    }
    void TakeMode(fs::perms permissions) {
        std::error_code ignored;
        fs::permissions(path_, permissions, ignored);
    }

private:
    std::string path_;
    OwnedFile file_;
};

bool Fail(std::string& error, int code) {
    error = SystemText(code);
    return false;
}

bool WriteStraight(const fs::path& target, std::span<const std::uint8_t> bytes, std::string& error) {
    OwnedFile file(std::fopen(target.string().c_str(), "wb"));
    if (file == nullptr || !WriteOut(file.get(), bytes)) return Fail(error, errno);
    return std::fclose(file.release()) == 0 || Fail(error, errno);
}

bool WriteBeside(const fs::path& target, const fs::file_status& before, std::span<const std::uint8_t> bytes,
                 std::string& error) {
    Temporary temporary(target);
    if (temporary.File() == nullptr) return Fail(error, errno);
    if (!WriteOut(temporary.File(), bytes)) return Fail(error, errno);
    if (!temporary.Close()) return Fail(error, errno);
    if (fs::exists(before)) temporary.TakeMode(before.permissions());
    std::error_code failure;
    temporary.TakeName(target, failure);
    return !failure || Fail(error, failure.default_error_condition().value());
}

bool ReadAll(std::FILE* file, std::vector<std::uint8_t>& bytes, std::string& error) {
    constexpr std::size_t kPiece = std::size_t{1} << 16, kMost = std::size_t{1} << 30;
    for (;;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kPiece);
        const std::size_t got = std::fread(bytes.data() + before, 1, kPiece, file);
        bytes.resize(before + got);
        if (bytes.size() > kMost) {
            error = "the file is too large";
            return false;
        }
        if (got < kPiece) return std::ferror(file) == 0 || Fail(error, errno);
    }
}

} // namespace

bool ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes, std::string& error) {
    bytes.clear();
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) return Fail(error, EISDIR);
    const OwnedFile file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) return Fail(error, errno);
    try {
        return ReadAll(file.get(), bytes, error);
    } catch (const std::bad_alloc&) {
        return Fail(error, ENOMEM);
    }
}

bool WriteFileSafely(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error) {
    std::error_code ignored;
    fs::path target(path);
    // A link stays a link: the file it leads to is the one replaced.
    if (fs::is_symlink(target, ignored)) {
        const fs::path led = fs::weakly_canonical(target, ignored);
        if (!ignored) target = led;
    }
    const fs::file_status before = fs::status(target, ignored);
    if (fs::is_directory(before)) return Fail(error, EISDIR);
    if (fs::exists(before) && !fs::is_regular_file(before)) return WriteStraight(target, bytes, error);
    return WriteBeside(target, before, bytes, error);
}

void RemovePendingTemporary() noexcept {
    const char* path = pendingTemporary;
    if (path == nullptr) return;
#ifdef _WIN32
    _unlink(path);
#else
    unlink(path);
#endif
}

} // namespace lumafold
