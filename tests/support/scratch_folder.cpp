#include "tests/support/scratch_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace lumafold::test {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::random_device random;
    do {
        path_ = (fs::temp_directory_path() / ("lumafold-" + std::to_string(random()))).string();
    } while (!fs::create_directory(path_));
}

ScratchFolder::~ScratchFolder() {
    // What a test made read-only would stay on Windows, and so does what lies deeper than the run-time
    // library can name there.
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(path_, ignored); entry != fs::end(entry);
         entry.increment(ignored)) {
        if (fs::is_regular_file(entry->symlink_status(ignored)))
            fs::permissions(entry->path(), fs::perms::owner_write, fs::perm_options::add, ignored);
    }
    fs::remove_all(path_, ignored);
}

std::string ScratchFolder::Path(const std::string& name) const {
    return (fs::path(path_) / name).make_preferred().string();
}

void ScratchFolder::Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
}

std::string ScratchFolder::Get(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ScratchFolder::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(path_))
        names.push_back(entry.path().lexically_relative(path_).generic_string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lumafold::test
