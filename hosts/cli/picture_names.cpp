#include "hosts/cli/picture_names.h"

#include <sstream>

#include "codecs/files.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/standard_streams.h"

namespace lumafold {
namespace {

constexpr std::size_t kMostListBytes = std::size_t{16} << 20;

std::string ListText(const std::string& path, std::istream& standardInput) {
    std::string text;
    if (path == kStandardStream) {
        ReadOn(standardInput, kMostListBytes + 1, text);
        return text;
    }
    Array<std::uint8_t> bytes;
    const FileError error = LoadFile(path.c_str(), bytes, kMostListBytes);
    if (error != 0) throw Failure(kFailed, "@" + path + ": " + FileErrorText(error));
    return {bytes.begin(), bytes.end()};
}

} // namespace

std::vector<std::string> NamedPictures(const std::string& word, std::istream& standardInput) {
    if (word.empty()) Mistake("an image without a name");
    if (!word.starts_with('@')) return {word};
    const std::string text = ListText(word.substr(1), standardInput);
    if (text.size() > kMostListBytes) throw Failure(kFailed, word + ": too large for a list of pictures");
    std::vector<std::string> names;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line == kStandardStream) line.insert(0, "./");
        if (!line.empty()) names.push_back(line);
    }
    if (names.empty()) throw Failure(kFailed, word + ": the list names no picture");
    return names;
}

} // namespace lumafold
