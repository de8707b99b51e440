#include "hosts/desktop/file_address.h"

#include <cstring>

namespace lumafold {

std::string FileAddress(const std::string& path, const std::string& anchor) {
    constexpr char kPlain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:";
    // A share begins with the server's name, a path with its drive.
    std::string address = path.starts_with("\\\\") ? "file:" : "file:///";
    for (const char letter : path) {
        const auto byte = static_cast<unsigned char>(letter);
        if (letter == '\\') {
            address += '/';
        } else if (letter != '\0' && std::strchr(kPlain, letter) != nullptr) {
            address += letter;
        } else {
            address += '%';
            address += "0123456789ABCDEF"[byte >> 4];
            address += "0123456789ABCDEF"[byte & 15];
        }
    }
    return address + anchor;
}

} // namespace lumafold
