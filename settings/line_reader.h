// Lines of a text file, in pieces of bounded length and without holding more of the file than one buffer.
#pragma once

#include "platform/files.h"

namespace lumafold {

/// A piece with its line feed and the zero behind it.
inline constexpr std::size_t kLineBytes = 260;

class LineReader {
public:
    explicit LineReader(const char* path) : file_(path) {}

    /// The next line with its line feed, which may follow a carriage return in the file; of a longer line the
    /// next 259 characters, and the rest as lines of their own. False at the end, or where Error tells why.
    bool Next(char (&line)[kLineBytes]);

    FileError Error() const { return file_.Error(); }

private:
    static constexpr int kEnd = -1;

    /// The next character, which stays the next one.
    int Peek();
    int Take();

    InputFile file_;
    unsigned char buffer_[4096];
    std::size_t at_ = 0, filled_ = 0;
};

} // namespace lumafold
