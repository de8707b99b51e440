#include "hosts/cli/progress.h"

#include <algorithm>
#include <iostream>
#include <unistd.h>

namespace lumafold {

ProgressStyle StyleFor(const std::ostream& stream, Talk talk) {
    if (talk == Talk::Quiet) return ProgressStyle::Silent;
    if (&stream == &std::cerr && isatty(STDERR_FILENO) != 0) return ProgressStyle::Bar;
    return talk == Talk::Verbose ? ProgressStyle::Phases : ProgressStyle::Silent;
}

void Progress::Caption(std::string_view caption) {
    caption_ = caption;
    position_ = total_ = 0;
    if (style_ == ProgressStyle::Bar) DrawBar();
    if (style_ == ProgressStyle::Phases) stream_ << caption_ << std::endl;
}

void Progress::Position(std::int64_t position, std::int64_t total) {
    total_ = std::max<std::int64_t>(total, 0);
    position_ = std::clamp<std::int64_t>(position, 0, total_);
    if (style_ == ProgressStyle::Bar) DrawBar();
}

void Progress::DrawBar() {
    constexpr int kCells = 32;
    if (caption_.empty()) return;
    const int full = total_ > 0 ? static_cast<int>(position_ * kCells / total_) : 0;
    std::string line = caption_;
    line.resize(std::max<std::size_t>(line.size(), 17), ' ');
    line += " [" + std::string(static_cast<std::size_t>(full), '#') +
            std::string(static_cast<std::size_t>(kCells - full), '.') + "]";
    if (total_ > 0) line += " " + std::to_string(position_) + "/" + std::to_string(total_);
    // Blanks over what is left of the last one: not every console knows a code for that.
    const std::size_t rest = drawn_ - std::min(drawn_, line.size());
    drawn_ = line.size();
    stream_ << '\r' << line << std::string(rest, ' ') << std::flush;
}

void Progress::Clear() {
    if (drawn_ > 0) stream_ << '\r' << std::string(drawn_, ' ') << '\r' << std::flush;
    drawn_ = 0;
}

} // namespace lumafold
