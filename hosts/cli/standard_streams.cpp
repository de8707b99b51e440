#include "hosts/cli/standard_streams.h"

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

std::string ReadAll(std::istream& stream, std::size_t most) {
    if (&stream == &std::cin) LeaveBytesAlone(stdin);
    std::string all;
    char piece[1 << 16];
    while (all.size() <= most && (stream.read(piece, sizeof(piece)), stream.gcount() > 0))
        all.append(piece, static_cast<std::size_t>(stream.gcount()));
    if (all.size() > most) all.resize(most + 1);
    return all;
}

bool WriteAll(std::ostream& stream, std::span<const std::uint8_t> bytes, std::string& error) {
    if (&stream == &std::cout) LeaveBytesAlone(stdout);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (stream.flush()) return true;
    error = "the standard output takes no more";
    return false;
}

bool IsTerminal(const std::ostream& stream) { return &stream == &std::cout && isatty(STDOUT_FILENO) != 0; }

} // namespace lumafold
