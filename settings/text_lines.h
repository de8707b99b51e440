// Text files by lines: read in pieces of bounded length without holding more of the file than one buffer, and
// written from memory that may run out.
#pragma once

#include <initializer_list>
#include <string_view>

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
    std::size_t at_ = 0, filled_ = 0, left_ = std::size_t{16} << 20; ///< of a file that may never end
};

class LineWriter {
public:
    /// Adds one line of all the parts. Where memory cannot be had the text has failed for good.
    void Line(std::initializer_list<const char*> parts);

    bool HasFailed() const { return failed_; }

    /// Replaces the file with the text, making its folder when that is missing; ENOMEM, with the file as it
    /// was, for a text that has failed.
    FileError Store(const char* path) const;

private:
    void Append(std::string_view text);

    Array<char> text_; ///< with room behind what is used
    std::size_t used_ = 0;
    bool failed_ = false;
};

} // namespace lumafold
