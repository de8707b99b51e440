// The image list between two runs: one path a line. The dialog's list is written from its last line to its
// first, and each path read goes to the top of the list, so both reversals together keep the order.
#pragma once

#include "settings/text_lines.h"

namespace lumafold {

inline constexpr char kListFileName[] = "LUMAFOLD_LIST.TXT";
/// Longest line read in one piece, its end and the zero included.
inline constexpr std::size_t kListLineBytes = kLineBytes;

/// Gives the paths of existing files one by one, in the file's order. The file is open while the reader
/// lives.
class ListFileReader {
public:
    explicit ListFileReader(const char* path) : lines_(path) {}

    /// False at the end, and at once when there is no such file.
    bool Next(char (&path)[kListLineBytes]);

private:
    LineReader lines_;
};

/// Collects paths and replaces the file with them.
class ListFileWriter {
public:
    /// Takes a path when there is such a file, and passes over it in silence otherwise. False when memory
    /// could not be had, after which nothing is written.
    bool Add(const char* path);

    /// Replaces the file, making its folder when that is missing; with nothing added the file is empty. False
    /// when it cannot be written, which leaves the old one whole.
    bool Write(const char* path) { return lines_.Store(path) == 0; }

private:
    LineWriter lines_;
};

} // namespace lumafold
