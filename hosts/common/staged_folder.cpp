#include "hosts/common/staged_folder.h"

#include <algorithm>
#include <memory>
#include <random>

#ifdef _WIN32
#include <windows.h>
#endif

#include "codecs/files.h"
#include "hosts/common/paths.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;

constexpr char kStagingStart[] = ".lumafold-";
constexpr char kFormer[] = "former"; // inside it: where the files go that are replaced
bool IsStagingFolder(const std::string& name) { return !NumberBetween(name, kStagingStart, "", 1).empty(); }

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

bool Fail(const fs::path& file, const std::string& what, std::string& error) {
    error = NameOf(file) + ": " + what;
    return false;
}

enum class Entries { Files, Folders };

/// The names of a folder's entries of one kind; links are files.
std::vector<std::string> NamesIn(const fs::path& folder, Entries wanted, std::error_code& failure) {
    std::vector<std::string> names;
    const auto add = [&](const fs::path& name, bool isFolder) {
        if (isFolder == (wanted == Entries::Folders)) names.push_back(NameOf(name));
    };
#ifdef _WIN32
    // The run-time library walks no folder whose path is very long.
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((folder / L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        failure.assign(static_cast<int>(GetLastError()), std::system_category());
        return names;
    }
    const std::unique_ptr<void, decltype(&FindClose)> owner(search, FindClose);
    do {
        const std::wstring name = found.cFileName;
        constexpr DWORD kFolderOrLink = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
        const bool isFolder = (found.dwFileAttributes & kFolderOrLink) == FILE_ATTRIBUTE_DIRECTORY;
        if (name != L"." && name != L"..") add(name, isFolder);
    } while (FindNextFileW(search, &found) != FALSE);
#else
    std::error_code ignored;
    fs::directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure))
        add(entry->path().filename(), fs::is_directory(entry->symlink_status(ignored)));
#endif
    return names;
}

/// A folder and all in it, as far as that can be done.
void RemoveTree(const fs::path& folder) { // NOLINT(misc-no-recursion): as deep as the folder is
    std::error_code ignored;
    for (const std::string& name : NamesIn(folder, Entries::Files, ignored))
        fs::remove(folder / PathOf(name), ignored);
    for (const std::string& name : NamesIn(folder, Entries::Folders, ignored))
        RemoveTree(folder / PathOf(name));
    fs::remove(folder, ignored);
}

/// What an earlier run left, `last` first if it did.
std::vector<std::string> FormerFiles(const fs::path& folder, const std::string& last,
                                     const std::function<bool(const std::string& name)>& isFormer,
                                     std::error_code& failure) {
    std::vector<std::string> names = NamesIn(folder, Entries::Files, failure);
    std::erase_if(names, [&](const std::string& name) { return name == last || !isFormer(name); });
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(folder / PathOf(last), ignored))) names.insert(names.begin(), last);
    return names;
}

/// Of this run, and of those that were killed.
void RemoveOldStaging(const fs::path& folder) {
    std::error_code ignored;
    for (const std::string& name : NamesIn(folder, Entries::Folders, ignored)) {
        if (IsStagingFolder(name)) RemoveTree(folder / PathOf(name));
    }
}

/// A slash at the end would make the parent of "x/" be "x".
fs::path WithoutSlash(std::string path) {
    while (path.size() > 1 && EndsInSeparator(path))
        path.pop_back();
    return PathOf(path);
}

} // namespace

StagedFolder::TakenBack::~TakenBack() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
}

StagedFolder::StagedFolder(const std::string& path) : folder_(WithoutSlash(path)) {}

StagedFolder::~StagedFolder() {
    if (!staged_) return;
    std::error_code ignored;
    try {
        for (const std::string& name : names_)
            fs::remove(staged_->Path() / PathOf(name), ignored);
        // What could not go back to its place stays inside.
        fs::remove(staged_->Path() / kFormer, ignored);
    } catch (const std::exception&) {
        // No memory for paths: a later run removes it.
    }
}

bool StagedFolder::Begin(std::string& error) {
    std::error_code failure;
    const bool made = fs::create_directory(folder_, failure);
    if (failure) return Fail(folder_, failure.message(), error);
    if (made) target_.emplace(folder_);
    const fs::path staging = NewFolderIn(folder_);
    if (staging.empty()) return Fail(folder_, "cannot be written into", error);
    staged_.emplace(staging);
    return true;
}

bool StagedFolder::Add(const std::string& name, std::span<const std::uint8_t> bytes, std::string& error) {
    if (!staged_ && !Begin(error)) return false;
    std::string why;
    if (!WriteFileSafely(NameOf(staged_->Path() / PathOf(name)), bytes, why))
        return Fail(folder_ / PathOf(name), why, error);
    names_.push_back(name);
    bytes_ += bytes.size();
    return true;
}

bool StagedFolder::Finish(const std::function<bool(const std::string& name)>& isFormer, std::string& error) {
    if (!TargetsAreFree(error) || !MoveIn(isFormer, error)) return false;
    if (target_) target_->Keep();
    staged_.reset();
    try {
        RemoveOldStaging(folder_); // this run's, too
    } catch (const std::exception&) {
        // No memory for names: a later run does it.
    }
    return true;
}

// A folder in the place of a file would stop the move half-way.
bool StagedFolder::TargetsAreFree(std::string& error) const {
    std::error_code ignored;
    for (const std::string& name : names_) {
        const fs::path place = folder_ / PathOf(name);
        if (fs::is_directory(place, ignored)) return Fail(place, "is a folder", error);
    }
    return true;
}

bool StagedFolder::MoveIn(const std::function<bool(const std::string& name)>& isFormer,
                          std::string& error) const {
    std::error_code failure;
    const fs::path aside = staged_->Path() / kFormer;
    fs::create_directory(aside, failure);
    if (failure) return Fail(folder_, failure.message(), error);
    FilesMoved former(folder_, aside), moved(staged_->Path(), folder_);
    // The file that came last goes first.
    const std::vector<std::string> names = FormerFiles(folder_, names_.back(), isFormer, failure);
    if (failure) return Fail(folder_, failure.message(), error);
    for (const std::string& name : names) {
        if (!former.Move(name, failure)) return Fail(folder_ / PathOf(name), failure.message(), error);
    }
    for (const std::string& name : names_) {
        if (!moved.Move(name, failure)) return Fail(folder_ / PathOf(name), failure.message(), error);
    }
    moved.Keep();
    former.Keep();
    return true;
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
