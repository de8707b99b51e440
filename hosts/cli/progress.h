// How far a build has come, for the person who waits: a bar under the host captions on a terminal, a line
// for each caption in a log.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace lumafold {

/// How much a person wants to be told.
enum class Talk { Usual, Quiet, Verbose };

enum class ProgressStyle { Silent, Phases, Bar };

/// A bar where `stream` is the terminal's; elsewhere the phases for who asks for them. Nothing when quiet.
ProgressStyle StyleFor(const std::ostream& stream, Talk talk);

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

    std::ostream& stream_;
    ProgressStyle style_;
    std::string caption_;
    std::int64_t position_ = 0, total_ = 0;
    std::size_t drawn_ = 0; ///< letters on the screen
};

} // namespace lumafold
