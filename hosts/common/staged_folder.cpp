#include "hosts/common/staged_folder.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include "codecs/files.h"
#include "hosts/common/paths.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;

constexpr char kStagingStart[] = ".lumafold-";
bool IsStagingFolder(const std::string& name) { return !NumberBetween(name, kStagingStart, "", 1).empty(); }

/// Removes a folder and all in it, unless told that it may stay.
class FolderTakenBack {
public:
    explicit FolderTakenBack(fs::path path) : path_(std::move(path)) {}
    FolderTakenBack(const FolderTakenBack&) = delete;
    FolderTakenBack& operator=(const FolderTakenBack&) = delete;
    ~FolderTakenBack() {
        std::error_code ignored;
        if (path_.empty()) return;
        // One by one where nothing is left inside: on Windows the run-time library walks no folder whose path
        // is very long.
        fs::remove(path_ / "former", ignored);
        if (!fs::remove(path_, ignored)) fs::remove_all(path_, ignored);
    }
    void Keep() { path_.clear(); }

private:
    fs::path path_;
};

/// Empty where none could be made.
fs::path NewFolderIn(const fs::path& folder) {
    std::random_device random;
    std::error_code failure;
    while (!failure) {
        fs::path made = folder / (kStagingStart + std::to_string(random()));
        if (fs::create_directory(made, failure)) return made;
    }
    return {};
}

/// Files on their way from one folder to another, which go back unless told that they may stay.
class FilesMoved {
public:
    FilesMoved(fs::path from, fs::path to) : from_(std::move(from)), to_(std::move(to)) {}
    FilesMoved(const FilesMoved&) = delete;
    FilesMoved& operator=(const FilesMoved&) = delete;
    ~FilesMoved() {
        std::error_code ignored;
        for (; !names_.empty(); names_.pop_back())
            fs::rename(to_ / PathOf(names_.back()), from_ / PathOf(names_.back()), ignored);
    }

    bool Move(const std::string& name, std::error_code& failure) {
        names_.push_back(name); // first, so that nothing can be moved and forgotten
        fs::rename(from_ / PathOf(name), to_ / PathOf(name), failure);
        if (failure) names_.pop_back();
        return !failure;
    }
    void Keep() { names_.clear(); }

private:
    fs::path from_, to_;
    std::vector<std::string> names_;
};

/// Writes into a hidden folder inside the target first, and moves everything to its place when all of it
/// stands. What stood there waits in the hidden folder until then: whatever ends the program, it is in the
/// one place or in the other.
class FolderWriter {
public:
    FolderWriter(const std::string& path, const FilesForFolder& files, std::string& error)
        : folder_(PathOf(path)), files_(files), error_(error) {}

    bool Write(std::uint64_t& bytes) {
        std::error_code failure;
        const bool made = fs::create_directory(folder_, failure);
        if (failure) return Fail(folder_, failure.message());
        FolderTakenBack target(made ? folder_ : fs::path());
        const fs::path staging = NewFolderIn(folder_);
        if (staging.empty()) return Fail(folder_, "cannot be written into");
        FolderTakenBack staged(staging);
        if (!Stage(staging, bytes) || !TargetsAreFree() || !MoveIn(staging)) return false;
        target.Keep();
        RemoveOldStaging();
        return true;
    }

private:
    bool Fail(const fs::path& file, const std::string& what) {
        error_ = NameOf(file) + ": " + what;
        return false;
    }

    bool Stage(const fs::path& staging, std::uint64_t& bytes) {
        bytes = 0;
        for (std::size_t i = 0; i < files_.names.size(); ++i) {
            if (const std::string why = files_.whyNotOn(i); !why.empty()) return Fail(folder_, why);
            std::string why;
            const fs::path name = PathOf(files_.names[i]);
            const std::vector<std::uint8_t> file = files_.make(i, why);
            if (file.empty()) return Fail(folder_ / name, why);
            if (!WriteFileSafely(NameOf(staging / name), file, why)) return Fail(folder_ / name, why);
            bytes += file.size();
        }
        return true;
    }

    // A folder in the place of a file would stop the move half-way.
    bool TargetsAreFree() {
        std::error_code ignored;
        for (const std::string& name : files_.names) {
            const fs::path place = folder_ / PathOf(name);
            if (fs::is_directory(place, ignored)) return Fail(place, "is a folder");
        }
        return true;
    }

    bool MoveIn(const fs::path& staging) {
        std::error_code failure;
        const fs::path aside = staging / "former";
        fs::create_directory(aside, failure);
        if (failure) return Fail(folder_, failure.message());
        FilesMoved former(folder_, aside), moved(staging, folder_);
        const std::vector<std::string> names = FormerFiles(failure);
        if (failure) return Fail(folder_, failure.message());
        for (const std::string& name : names) {
            if (!former.Move(name, failure)) return Fail(folder_ / PathOf(name), failure.message());
        }
        for (const std::string& name : files_.names) {
            if (!moved.Move(name, failure)) return Fail(folder_ / PathOf(name), failure.message());
        }
        moved.Keep();
        former.Keep();
        return true;
    }

    /// The file that came last goes first.
    std::vector<std::string> FormerFiles(std::error_code& failure) const {
        std::vector<std::string> names;
        std::error_code ignored;
        const std::string& last = files_.names.back();
        fs::directory_iterator entry(folder_, failure);
        for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
            std::string name = NameOf(entry->path().filename());
            if (name != last && files_.isFormer(name) && !entry->is_directory(ignored))
                names.push_back(std::move(name));
        }
        if (fs::exists(fs::symlink_status(folder_ / PathOf(last), ignored)))
            names.insert(names.begin(), last);
        return names;
    }

    /// Of runs that were killed.
    void RemoveOldStaging() const {
        std::vector<fs::path> old;
        std::error_code ignored;
        fs::directory_iterator entry(folder_, ignored);
        for (; entry != fs::directory_iterator(); entry.increment(ignored)) {
            if (!IsStagingFolder(NameOf(entry->path().filename()))) continue;
            if (fs::is_directory(entry->symlink_status(ignored))) old.push_back(entry->path());
        }
        for (const fs::path& path : old)
            fs::remove_all(path, ignored);
    }

    fs::path folder_;
    const FilesForFolder& files_;
    std::string& error_;
};

} // namespace

bool WriteStagedFolder(const std::string& path, const FilesForFolder& files, std::uint64_t& bytes,
                       std::string& error) {
    // A slash at the end would make the parent of "x/" be "x".
    std::string folder = path;
    while (folder.size() > 1 && EndsInSeparator(folder))
        folder.pop_back();
    return FolderWriter(folder, files, error).Write(bytes);
}

std::string NumberBetween(const std::string& name, const std::string& start, const std::string& end,
                          std::size_t digits) {
    if (name.size() < start.size() + end.size() || !name.starts_with(start) || !name.ends_with(end))
        return "";
    std::string number = name.substr(start.size(), name.size() - start.size() - end.size());
    const bool all =
        std::all_of(number.begin(), number.end(), [](char letter) { return letter >= '0' && letter <= '9'; });
    return all && number.size() >= digits ? number : "";
}

} // namespace lumafold
