#include "hosts/cli/console.h"

#include <cstdio>

namespace lumafold {
namespace {

std::string Escaped(unsigned char byte) {
    if (byte == '\n') return "\\n";
    if (byte == '\r') return "\\r";
    if (byte == '\t') return "\\t";
    char text[8];
    std::snprintf(text, sizeof(text), "\\x%02X", byte);
    return text;
}

unsigned char ByteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

/// How many bytes the letter at `at` has that may be shown as they are; 0 for none.
std::size_t PrintableBytes(std::string_view text, std::size_t at) {
    const unsigned char first = ByteAt(text, at);
    if (first < 0x20 || first == 0x7F) return 0;
    if (first < 0x80) return 1;
    const std::size_t bytes = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) return 0;
    for (std::size_t i = 1; i < bytes; ++i) {
        if ((ByteAt(text, at + i) & 0xC0) != 0x80) return 0;
    }
    // U+0080 to U+009F steer terminals as an escape character does; the others turn the order of letters
    // round or end a line.
    if (first == 0xC2 && ByteAt(text, at + 1) < 0xA0) return 0;
    const unsigned char last = ByteAt(text, at + 2);
    const bool turns =
        (ByteAt(text, at + 1) == 0x80 && (last == 0x8E || last == 0x8F || (last >= 0xA8 && last <= 0xAE))) ||
        (ByteAt(text, at + 1) == 0x81 && last >= 0xA6 && last <= 0xA9);
    return first == 0xE2 && turns ? 0 : bytes;
}

} // namespace

std::string Printable(std::string_view text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = PrintableBytes(text, at);
        shown += bytes == 0 ? Escaped(ByteAt(text, at)) : std::string(text.substr(at, bytes));
        at += bytes == 0 ? 1 : bytes;
    }
    return shown;
}

} // namespace lumafold
