// Runs every target over its seeds and over the inputs that once broke it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/fuzz_target.h"

namespace lumafold::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::uint8_t> ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Replay, EveryKeptInput) {
    const fs::path here(LUMAFOLD_FUZZ_DIR);
    for (const FuzzTarget* target = FuzzTarget::first; target != nullptr; target = target->next) {
        target->run({});
        int inputs = 0;
        for (const char* kind : {"seeds", "regressions"}) {
            const fs::path folder = here / kind / target->name;
            if (!fs::is_directory(folder)) continue;
            for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
                std::fprintf(stderr, "%s\n", entry.path().c_str()); // a crash tells its input
                const std::vector<std::uint8_t> bytes = ReadAll(entry.path());
                target->run(bytes);
                ++inputs;
            }
        }
        EXPECT_GT(inputs, 0) << target->name << " has no seeds in " << here;
    }
}

} // namespace
} // namespace lumafold::test
