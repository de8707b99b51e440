// The pictures that words name: a file, "-" for the standard input, or "@FILE" for a list with one path a
// line.
#pragma once

#include <istream>
#include <string>
#include <vector>

namespace lumafold {

/// The word itself, or what its list holds: blank lines are none, and every other is a path, "-" and "@"
/// included. Throws Failure for a list that cannot be read or has no path.
std::vector<std::string> NamedPictures(const std::string& word, std::istream& standardInput);

} // namespace lumafold
