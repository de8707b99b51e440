// Many files into one folder, all of them or none: written into a hidden folder inside it first, and moved to
// their places when all of them stand.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace lumafold {

/// Takes back all that it wrote when it goes, unless it was finished; whatever ends the program, what stood
/// there before is still in the folder or in the hidden one.
class StagedFolder {
public:
    /// Nothing is made before the first file.
    explicit StagedFolder(const std::string& path);
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;
    ~StagedFolder();

    /// Writes a file aside. Finish moves files in the order in which they were added, so that whoever finds
    /// the last one finds all of them. False, with `error` in one line, when it cannot be written.
    bool Add(const std::string& name, std::span<const std::uint8_t> bytes, std::string& error);
    /// Moves all to their places, of which there is one at least. What an earlier run left goes: the files of
    /// these names and those that `isFormer` knows; other files stay. False, with `error` in one line and
    /// the folder as it was, when that cannot be done.
    bool Finish(const std::function<bool(const std::string& name)>& isFormer, std::string& error);
    /// What was written.
    std::uint64_t Bytes() const { return bytes_; }

private:
    /// Removes a folder if it is empty, unless told that it may stay.
    class TakenBack {
    public:
        explicit TakenBack(std::filesystem::path path) : path_(std::move(path)) {}
        TakenBack(const TakenBack&) = delete;
        TakenBack& operator=(const TakenBack&) = delete;
        ~TakenBack();
        void Keep() { path_.clear(); }
        const std::filesystem::path& Path() const { return path_; }

    private:
        std::filesystem::path path_;
    };

    bool Begin(std::string& error);
    bool TargetsAreFree(std::string& error) const;
    bool MoveIn(const std::function<bool(const std::string& name)>& isFormer, std::string& error) const;

    std::filesystem::path folder_;
    std::vector<std::string> names_;
    std::uint64_t bytes_ = 0;
    std::optional<TakenBack> target_, staged_; // target_ only where the folder was made
};

/// The number in a name like "frame-0012.png", which has `digits` digits at least; "" for another name.
std::string NumberBetween(const std::string& name, const std::string& start, const std::string& end,
                          std::size_t digits);

} // namespace lumafold
