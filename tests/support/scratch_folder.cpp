#include "tests/support/scratch_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "hosts/common/paths.h"
#include "platform/files.h"

namespace lumafold::test {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::random_device random;
    do {
        path_ = NameOf(fs::temp_directory_path() / ("lumafold-" + std::to_string(random())));
    } while (!fs::create_directory(PathOf(path_)));
}

ScratchFolder::~ScratchFolder() {
    // What a test made read-only would stay on Windows, and so does what lies deeper than the run-time
    // library can name there.
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(PathOf(path_), ignored); entry != fs::end(entry);
         entry.increment(ignored)) {
        if (fs::is_regular_file(entry->symlink_status(ignored)))
            fs::permissions(entry->path(), fs::perms::owner_write, fs::perm_options::add, ignored);
    }
    fs::remove_all(PathOf(path_), ignored);
}

std::string ScratchFolder::Path(const std::string& name) const {
    return NameOf((PathOf(path_) / PathOf(name)).make_preferred());
}

void ScratchFolder::Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(PathOf(Path(name)), std::ios::binary) << bytes;
}

std::string ScratchFolder::Get(const std::string& name) const {
    std::ifstream file(PathOf(Path(name)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ScratchFolder::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(PathOf(path_))) {
        names.push_back(NameOf(entry.path().lexically_relative(PathOf(path_))));
        std::replace(names.back().begin(), names.back().end(), kFolderSeparator, '/');
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lumafold::test
