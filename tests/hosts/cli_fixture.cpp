#include "tests/hosts/cli_fixture.h"

#include <sstream>

#include "hosts/cli/command_line.h"

namespace lumafold::test {

std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    for (const char letter : line + " ") {
        if (letter == '\'') {
            quoted = !quoted;
        } else if (letter == ' ' && !quoted) {
            if (!word.empty()) words.push_back(std::move(word));
            word.clear();
        } else {
            word += letter;
        }
    }
    return words;
}

Ran CommandLineTest::Run(const std::string& line, const std::string& in) const {
    std::vector<std::string> words = Words(line);
    for (std::string& word : words)
        word = In(word);
    std::istringstream input(in);
    std::ostringstream out, err;
    const int status = RunCommandLine(words, {input, out, err});
    return {status, out.str(), err.str()};
}

std::string CommandLineTest::In(std::string text) const {
    for (std::size_t at = text.find("%/"); at != std::string::npos; at = text.find("%/"))
        text.replace(at, 2, Path(""));
    return text;
}

void CommandLineTest::PutPicture(const std::string& name, int width, int height, unsigned seed) const {
    const auto w = static_cast<unsigned>(width), h = static_cast<unsigned>(height);
    const unsigned stride = (w * 3 + 3) / 4 * 4, rows = stride * h;
    std::string file = "BM";
    for (const unsigned field : {54 + rows, 0U, 54U, 40U, w, h, 24U << 16 | 1, 0U, rows, 0U, 0U, 0U, 0U}) {
        for (unsigned shift = 0; shift < 32; shift += 8)
            file += static_cast<char>(field >> shift & 0xFF);
    }
    for (unsigned y = 0; y < h; ++y) {
        for (unsigned x = 0; x < stride; ++x)
            file += static_cast<char>(x < 3 * w ? seed + 37 * x + 101 * y : 0);
    }
    Put(name, file);
}

} // namespace lumafold::test
