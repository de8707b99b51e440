// How far a build has come, for the person who waits: a bar under the host captions on a terminal, plain
// lines in a log, nothing when silence was asked for.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace lumafold {

enum class ProgressStyle { Silent, Lines, Bar };

/// Silent when quiet; else a bar where `stream` is the terminal's.
ProgressStyle StyleFor(const std::ostream& stream, bool quiet);

class Progress {
public:
    Progress(std::ostream& stream, ProgressStyle style) : stream_(stream), style_(style) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    void Caption(std::string_view caption);
    /// A total of 0 forgets the position.
    void Position(std::int64_t position, std::int64_t total);
    /// Takes the bar off the screen, so that other text can be written.
    void Clear();

private:
    void DrawBar();
    void WriteLine();

    std::ostream& stream_;
    ProgressStyle style_;
    std::string caption_;
    std::int64_t position_ = 0, total_ = 0, tenthShown_ = 0;
    std::size_t drawn_ = 0; ///< letters on the screen
};

} // namespace lumafold
