#include "hosts/cli/standard_streams.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace lumafold {
namespace {

/// From now on; the system's own way turns line ends round.
void LeaveBytesAlone([[maybe_unused]] std::FILE* file) {
#ifdef _WIN32
    _setmode(_fileno(file), _O_BINARY);
#endif
}

} // namespace

void ReadOn(std::istream& stream, std::size_t most, std::string& bytes) {
    if (&stream == &std::cin) LeaveBytesAlone(stdin);
    char piece[1 << 16];
    while (bytes.size() < most && stream) {
        stream.read(piece, static_cast<std::streamsize>(std::min(sizeof(piece), most - bytes.size())));
        bytes.append(piece, static_cast<std::size_t>(stream.gcount()));
    }
}

bool WriteAll(std::ostream& stream, std::span<const std::uint8_t> bytes, std::string& error) {
    if (&stream == &std::cout) LeaveBytesAlone(stdout);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (stream.flush()) return true;
    error = kStandardOutputFull;
    return false;
}

bool IsTerminal(const std::ostream& stream) { return &stream == &std::cout && isatty(STDOUT_FILENO) != 0; }

} // namespace lumafold
