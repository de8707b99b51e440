#include "resources/manual/text.h"

#include <cctype>
#include <fstream>
#include <iterator>

namespace lumafold::manual {

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file || text.empty()) throw Fault(path + ": cannot be read");
    return text;
}

std::string Fill(std::string_view text, const Values& values) {
    std::string filled;
    for (std::size_t at = 0;;) {
        const std::size_t open = text.find("{{", at), close = text.find("}}", open);
        if (close == std::string_view::npos) return filled.append(text.substr(at));
        const std::string_view name = text.substr(open + 2, close - open - 2);
        const auto value = values.find(name);
        if (value == values.end()) throw Fault("nothing is known of {{" + std::string(name) + "}}");
        filled.append(text.substr(at, open - at)).append(value->second);
        at = close + 2;
    }
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string Caption(std::string_view label) {
    std::string caption;
    for (const char c : label) {
        if (c != '&' && c != ':') caption += c;
    }
    return caption;
}

std::string AnchorName(std::string_view text) {
    std::string name;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
    }
    return name;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0) pieces.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pieces;
}

std::vector<std::string> ReadLines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    if (!file) throw Fault(path + ": cannot be read");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) lines.push_back(line);
    }
    return lines;
}

} // namespace lumafold::manual
