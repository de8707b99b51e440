// The buffer of file names that a host fills.
#include <cstring>
#include <string>

#include "plugin/protocol/chosen_names.h"
#include "tests/fuzz/fuzz_target.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(names) {
    const ChosenNames names(reinterpret_cast<const char*>(input.data()), input.size());
    Require(names.Count() <= kMaxChosenNames, "no more names than are taken");
    std::string before;
    char path[kMaxPath];
    for (std::size_t i = 0; names.Path(i, path); ++i) {
        const void* end = std::memchr(path, 0, sizeof(path));
        Require(end != nullptr && end != path, "a path ends and is not empty");
        Require(before <= path, "the paths are in order");
        before = path;
    }
}
