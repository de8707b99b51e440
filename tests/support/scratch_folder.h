// A folder of a test's own, which goes with it.
#pragma once

#include <string>
#include <vector>

namespace lumafold::test {

class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    const std::string& Path() const { return path_; }
    /// With the system's own separator between; `name` has "/".
    std::string Path(const std::string& name) const;
    void Put(const std::string& name, const std::string& bytes) const;
    std::string Get(const std::string& name) const;
    /// Every path below the folder with "/", sorted.
    std::vector<std::string> Names() const;

private:
    std::string path_;
};

} // namespace lumafold::test
