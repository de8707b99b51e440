// The text of a file to be, line by line, in memory that may run out.
#pragma once

#include "platform/files.h"

namespace lumafold {

class LineWriter {
public:
    /// Adds one line of all the parts. Where memory cannot be had the text has failed for good.
    void Line(std::span<const char* const> parts);
    void Line(const char* text) { Line({&text, 1}); }

    bool HasFailed() const { return failed_; }

    /// Replaces the file with the text, making its folder when that is missing; ENOMEM, with the file as it
    /// was, for a text that has failed.
    FileError Store(const char* path) const;

private:
    void Append(const char* bytes, std::size_t length);
    bool MakeRoom(std::size_t length);

    Array<char> text_;
    std::size_t used_ = 0;
    bool failed_ = false;
};

} // namespace lumafold
