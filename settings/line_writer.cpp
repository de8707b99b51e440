#include "settings/line_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace lumafold {
namespace {

#ifdef _WIN32
constexpr char kLineEnd[] = "\r\n";
#else
constexpr char kLineEnd[] = "\n";
#endif

} // namespace

void LineWriter::Line(std::span<const char* const> parts) {
    for (const char* part : parts)
        Append(part, std::strlen(part));
    Append(kLineEnd, sizeof(kLineEnd) - 1);
}

void LineWriter::Append(const char* bytes, std::size_t length) {
    if (failed_ || !MakeRoom(length)) return;
    std::copy_n(bytes, length, text_.begin() + used_);
    used_ += length;
}

bool LineWriter::MakeRoom(std::size_t length) {
    if (length <= text_.size() - used_) return true;
    Array<char> larger(std::max<std::size_t>(2 * text_.size() + length, 4096));
    failed_ = !larger;
    if (failed_) return false;
    std::copy_n(text_.begin(), used_, larger.begin());
    text_ = std::move(larger);
    return true;
}

FileError LineWriter::Store(const char* path) const {
    if (failed_) return ENOMEM;
    MakeFoldersAbove(path);
    return StoreFile(path, {reinterpret_cast<const std::uint8_t*>(text_.data()), used_});
}

} // namespace lumafold
