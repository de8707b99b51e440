// Pictures and animations through the standard input and output.
#pragma once

#include <cstdint>
#include <iostream>
#include <span>
#include <string>

namespace lumafold {

/// The standard input or output, where the name of a file is due.
inline constexpr char kStandardStream[] = "-";
inline constexpr char kStandardOutputFull[] = "the standard output takes no more";

/// Reads on until `bytes` holds `most` of them or the stream ends.
void ReadOn(std::istream& stream, std::size_t most, std::string& bytes);

/// False with `error` in one line when not all of it could be written.
bool WriteAll(std::ostream& stream, std::span<const std::uint8_t> bytes, std::string& error);

/// Whether somebody would see the bytes as letters.
bool IsTerminal(const std::ostream& stream);

} // namespace lumafold
