#include "codecs/files.h"

#include <cerrno>
#include <new>
#include <system_error>

namespace lumafold {
namespace {

bool Outcome(FileError code, std::string& error) {
    if (code != 0) error = FileErrorText(code);
    return code == 0;
}

} // namespace

std::string FileErrorText(FileError error) {
    switch (error) {
    case ENOENT:
        return "there is no such file or folder";
    case EACCES:
    case EPERM:
        return "permission denied";
    case EISDIR:
        return "this is a folder";
    case ENOSPC:
        return "the disk is full";
    case ENOMEM:
        return "there is not enough memory";
    case EFBIG:
        return "the file is too large";
    default:
        return std::generic_category().message(error);
    }
}

bool ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes, std::string& error) {
    constexpr std::size_t kMost = std::size_t{1} << 30;
    bytes.clear();
    Array<std::uint8_t> read;
    if (const FileError code = LoadFile(path.c_str(), read, kMost)) return Outcome(code, error);
    try {
        bytes.assign(read.begin(), read.end());
    } catch (const std::bad_alloc&) {
        return Outcome(ENOMEM, error);
    }
    return true;
}

bool WriteFileSafely(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error) {
    return Outcome(StoreFile(path.c_str(), bytes), error);
}

} // namespace lumafold
