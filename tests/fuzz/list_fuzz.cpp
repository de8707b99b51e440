// List files, which name files that are there or not.
#include <cstring>

#include "settings/list_file.h"
#include "tests/fuzz/input_file.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(list) {
    const InputFileOf file(input);
    ListFileReader reader(file.Path());
    char path[kListLineBytes];
    for (std::size_t paths = 0; reader.Next(path); ++paths) {
        Require(std::memchr(path, 0, sizeof(path)) != nullptr, "a path ends");
        Require(paths <= input.size(), "the list ends");
    }
}
