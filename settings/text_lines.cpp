#include "settings/text_lines.h"

#include <algorithm>
#include <cerrno>

namespace lumafold {

#ifdef _WIN32
constexpr int kEndOfText = 0x1A; // where this system takes a text file to end
#else
constexpr int kEndOfText = -1;
#endif

bool LineReader::Next(char (&line)[kLineBytes]) {
    std::size_t length = 0;
    int letter = 0;
    while (length < kLineBytes - 1 && letter != '\n') {
        letter = Take();
        if (letter == kEnd) break;
        if (letter == '\r' && Peek() == '\n') letter = Take();
        line[length++] = static_cast<char>(letter);
    }
    line[length] = 0;
    return length != 0;
}

int LineReader::Peek() {
    if (at_ == filled_) {
        at_ = 0;
        filled_ = file_.Read(buffer_, std::min(sizeof(buffer_), left_));
        left_ -= filled_;
    }
    const int letter = filled_ == 0 ? kEnd : buffer_[at_];
    return letter == kEndOfText ? kEnd : letter;
}

int LineReader::Take() {
    const int letter = Peek();
    if (letter != kEnd) ++at_;
    return letter;
}

void LineWriter::Line(std::initializer_list<const char*> parts) {
    for (const char* part : parts)
        Append(part);
#ifdef _WIN32
    Append("\r\n");
#else
    Append("\n");
#endif
}

void LineWriter::Append(std::string_view text) {
    const std::size_t needed = used_ + text.size();
    if (needed > text_.size() && !text_.Resize(std::max<std::size_t>(2 * needed, 4096))) failed_ = true;
    if (failed_) return;
    std::copy(text.begin(), text.end(), text_.begin() + used_);
    used_ = needed;
}

FileError LineWriter::Store(const char* path) const {
    if (failed_) return ENOMEM;
    MakeFoldersAbove(path);
    const std::span text(reinterpret_cast<const std::uint8_t*>(text_.data()), used_);
    return StoreFile(path, {&text, 1});
}

} // namespace lumafold
