#include "codecs/files.h"

#include <cerrno>
#include <system_error>

#include "codecs/decode_common.h"
#include "codecs/file_kinds.h"
#include "codecs/picture_kinds.h"

namespace lumafold {
namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 30;

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

bool ReadWholeFile(const std::string& path, Array<std::uint8_t>& bytes, std::string& error) {
    return Outcome(LoadFile(path.c_str(), bytes, kMostBytes), error);
}

bool ReadKnownFile(const std::string& path, Array<std::uint8_t>& bytes, std::string& error) {
    InputFile file(path.c_str());
    std::uint8_t first[kKindBytes];
    const std::span<const std::uint8_t> read(first, file.Read(first, sizeof first));
    if (file.Error() != 0) return Outcome(file.Error(), error);
    if (!HasAt(read, 0, kMngSignature) && PictureKindOf(read) == nullptr) {
        error = read.empty() ? kEmptyFile : UnknownKindText();
        return false;
    }
    return Outcome(file.ReadRest(read, bytes, kMostBytes), error);
}

bool WriteFileSafely(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error) {
    return WriteFileSafely(path, FilePieces(&bytes, 1), error);
}
bool WriteFileSafely(const std::string& path, FilePieces pieces, std::string& error) {
    return Outcome(StoreFile(path.c_str(), pieces), error);
}

} // namespace lumafold
