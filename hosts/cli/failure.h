// How a command ends early: one line for the person and the exit status. Thrown by what reads words, checks
// names and loads pictures; the program's outermost function says it.
#pragma once

#include <stdexcept>
#include <string>

namespace lumafold {

inline constexpr int kFailed = 1;  ///< what was asked for could not be done
inline constexpr int kMistake = 2; ///< the words cannot be meant so

struct Failure : std::runtime_error {
    Failure(int exitStatus, const std::string& line) : std::runtime_error(line), status(exitStatus) {}
    int status;
};

[[noreturn]] inline void Mistake(const std::string& line) { throw Failure(kMistake, line); }

/// --help and --version: what is printed instead of anything else, with status 0.
struct Answer : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace lumafold
