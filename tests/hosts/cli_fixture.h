// The command line run in this process, in a folder of its own that goes with the test.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/pictures.h"

namespace lumafold::test {

/// The words of a line, between blanks or in single quotes.
std::vector<std::string> Words(const std::string& line);

struct Ran {
    int status;
    std::string out, err;
};

class CommandLineTest : public testing::Test {
protected:
    CommandLineTest();
    ~CommandLineTest() override;

    /// `in` is what stands on the standard input.
    Ran Run(const std::vector<std::string>& args, const std::string& in = "") const;
    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    void Put(const std::string& name, const std::string& bytes) const;
    std::string Get(const std::string& name) const;
    /// A 24-bit bitmap file whose pixels are all different, written byte by byte here.
    void PutPicture(const std::string& name, int width, int height, unsigned seed) const;
    /// Every path below the folder, sorted, with slashes.
    std::vector<std::string> Names() const;

private:
    std::string folder_;
};

} // namespace lumafold::test
