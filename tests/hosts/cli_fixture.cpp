#include "tests/hosts/cli_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "hosts/cli/command_line.h"

namespace lumafold::test {

namespace fs = std::filesystem;

CommandLineTest::CommandLineTest() {
    std::string name = (fs::temp_directory_path() / "lumafold-test-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
}

CommandLineTest::~CommandLineTest() { fs::remove_all(folder_); }

Ran CommandLineTest::Run(const std::vector<std::string>& args) const {
    std::ostringstream out, err;
    const int status = RunCommandLine(args, out, err);
    return {status, out.str(), err.str()};
}

void CommandLineTest::Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
}

std::string CommandLineTest::Get(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void CommandLineTest::PutPicture(const std::string& name, int width, int height, unsigned seed) const {
    const auto number = [](unsigned value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> 8 * i & 0xFF);
        return text;
    };
    const unsigned stride = (static_cast<unsigned>(width) * 3 + 3) / 4 * 4;
    const unsigned rows = stride * static_cast<unsigned>(height);
    std::string file = "BM" + number(54 + rows, 4) + number(0, 4) + number(54, 4);
    file += number(40, 4) + number(static_cast<unsigned>(width), 4) +
            number(static_cast<unsigned>(height), 4) + number(1, 2) + number(24, 2) + number(0, 4) +
            number(rows, 4) + std::string(16, '\0');
    for (int y = 0; y < height; ++y) {
        std::string row;
        for (int x = 0; x < 3 * width; ++x) {
            row += static_cast<char>(seed + 37u * static_cast<unsigned>(x) + 101u * static_cast<unsigned>(y));
        }
        row.resize(stride, '\0');
        file += row;
    }
    Put(name, file);
}

std::vector<std::string> CommandLineTest::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
        names.push_back(fs::relative(entry.path(), folder_).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lumafold::test
