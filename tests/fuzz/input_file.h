// The input as a file without a place on disk, for readers that take a path.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "tests/fuzz/fuzz_target.h"

namespace lumafold::test {

class InputFileOf {
public:
    explicit InputFileOf(FuzzInput input) : file_(memfd_create("input", 0)) {
        Require(file_ >= 0 && write(file_, input.data(), input.size()) == static_cast<ssize_t>(input.size()),
                "the input has a file");
        path_ = "/proc/self/fd/" + std::to_string(file_);
    }
    InputFileOf(const InputFileOf&) = delete;
    InputFileOf& operator=(const InputFileOf&) = delete;
    ~InputFileOf() { close(file_); }

    const char* Path() const { return path_.c_str(); }

private:
    int file_;
    std::string path_;
};

} // namespace lumafold::test
