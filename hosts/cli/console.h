// What the program reads from and talks through. Names of files may hold any byte: in what is said, control
// characters are shown as escapes, so that a message is one line and no name steers a terminal.
#pragma once

#include <iostream>
#include <string>
#include <string_view>

namespace lumafold {

/// Control characters as \n, \t, \x1B and so on; where names are UTF-8, bytes that are none, too.
std::string Printable(std::string_view text);

struct Console {
    std::istream& in;
    std::ostream& out; ///< what was asked for
    std::ostream& err; ///< all else

    /// A line on `err`, with the program's name in front.
    void Say(std::string_view line) const { err << "lumafold: " << Printable(line) << std::endl; }
    void Warn(std::string_view line) const { Say("warning: " + std::string(line)); }
};

} // namespace lumafold
