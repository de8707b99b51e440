// Pictures and animations through the standard input and output.
#pragma once

#include <cstdint>
#include <iostream>
#include <span>
#include <string>

namespace lumafold {

/// The standard input or output, where the name of a file is due.
inline constexpr char kStandardStream[] = "-";

/// All bytes to the stream's end; of more than `most`, that many and one.
std::string ReadAll(std::istream& stream, std::size_t most);

/// False with `error` in one line when not all of it could be written.
bool WriteAll(std::ostream& stream, std::span<const std::uint8_t> bytes, std::string& error);

/// Whether somebody would see the bytes as letters.
bool IsTerminal(const std::ostream& stream);

} // namespace lumafold
