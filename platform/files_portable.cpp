#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_system.h"

namespace lumafold::file_system {
namespace {

/// The absolute path in an environment variable with `behind` after it.
bool TakeFromEnvironment(const char* name, const char* behind, char (&folder)[kPathBytes]) {
    const char* path = std::getenv(name);
    if (path == nullptr || path[0] != '/' || std::strlen(path) + std::strlen(behind) >= kPathBytes)
        return false;
    std::strcpy(folder, path);
    std::strcat(folder, behind);
    return true;
}

int Descriptor(File file) { return static_cast<int>(file); }

/// What a call that returns -1 for failure came to.
FileError Result(int returned) { return returned < 0 ? errno : 0; }

} // namespace

FileError Open(const char* path, Opening opening, File& file) {
    constexpr int kFlags[] = {O_RDONLY, O_CREAT | O_EXCL | O_WRONLY, O_WRONLY | O_TRUNC};
    file = open(path, kFlags[static_cast<int>(opening)] | O_CLOEXEC, 0666);
    return file < 0 ? errno : 0;
}

FileError Read(File file, void* into, std::size_t most, std::size_t& got) {
    got = 0;
    ssize_t returned = 0;
    do {
        returned = read(Descriptor(file), into, most);
    } while (returned < 0 && errno == EINTR);
    if (returned < 0) return errno;
    got = static_cast<std::size_t>(returned);
    return 0;
}

FileError Write(File file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(Descriptor(file), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return errno;
        if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return 0;
}

FileError Flush(File file) {
    // Pipes and devices, and some file systems, have nothing to flush.
    if (fsync(Descriptor(file)) == 0 || errno == EINVAL || errno == EROFS) return 0;
    return errno;
}

FileError Close(File file) { return Result(close(Descriptor(file))); }

std::uint64_t LikelyBytes(File file) {
    struct stat status {};
    const bool known = fstat(Descriptor(file), &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

Standing Inspect(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0) return {};
    const auto mode = static_cast<std::uint32_t>(status.st_mode & 07777);
    if (S_ISDIR(status.st_mode)) return {Kind::Folder, mode};
    if (!S_ISREG(status.st_mode)) return {Kind::Special, mode};
    const bool writable = (mode & 0222) != 0 && faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) == 0;
    return {writable ? Kind::Ordinary : Kind::ReadOnly, mode};
}

void TakeMode(const char* path, std::uint32_t mode) {
    [[maybe_unused]] const int ignored = chmod(path, static_cast<mode_t>(mode));
}

FileError FollowLinks(const char* path, char (&target)[kPathBytes]) {
    if (std::strlen(path) >= kPathBytes) return ENAMETOOLONG;
    std::strcpy(target, path);
    for (int links = 0; links < 40; ++links) {
        char led[kPathBytes];
        const ssize_t length = readlink(target, led, sizeof(led));
        if (length < 0) return 0; // no link, or nothing yet
        const char* slash = std::strrchr(target, '/');
        const bool beside = led[0] != '/' && slash != nullptr;
        const std::size_t start = beside ? static_cast<std::size_t>(slash - target) + 1 : 0;
        const auto bytes = static_cast<std::size_t>(length);
        if (start + bytes >= kPathBytes) return ENAMETOOLONG;
        std::memcpy(target + start, led, bytes);
        target[start + bytes] = 0;
    }
    return ELOOP;
}

FileError Replace(const char* from, const char* target) { return Result(std::rename(from, target)); }

void Remove(const char* path) noexcept { unlink(path); }

// For the person alone: what a missing folder of somebody's settings should be.
void MakeFolder(const char* path) { [[maybe_unused]] const int ignored = mkdir(path, 0700); }

bool ApplicationDataFolder(char (&folder)[kPathBytes]) {
    return TakeFromEnvironment("XDG_CONFIG_HOME", "", folder) ||
           TakeFromEnvironment("HOME", "/.config", folder);
}

} // namespace lumafold::file_system
