// The command line run in this process, in a folder of its own that goes with the test.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/pictures.h"
#include "tests/support/scratch_folder.h"

namespace lumafold::test {

/// The words of a line, between blanks or in single quotes.
std::vector<std::string> Words(const std::string& line);

struct Ran {
    int status;
    std::string out, err;
};

class CommandLineTest : public testing::Test {
protected:
    /// Of the words of a line, in which "%/" is the test's folder.
    Ran Run(const std::string& line, const std::string& in = "") const;
    std::string In(std::string text) const; ///< the folder for each "%/"
    std::string Path(const std::string& name) const { return folder_.Path() + "/" + name; }
    void Put(const std::string& name, const std::string& bytes) const { folder_.Put(name, bytes); }
    std::string Get(const std::string& name) const { return folder_.Get(name); }
    /// A 24-bit bitmap file whose pixels are all different, written byte by byte here.
    void PutPicture(const std::string& name, int width, int height, unsigned seed) const;
    std::vector<std::string> Names() const { return folder_.Names(); }

private:
    ScratchFolder folder_;
};

} // namespace lumafold::test
