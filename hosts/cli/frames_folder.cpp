#include "hosts/cli/frames_folder.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <random>

#include "codecs/files.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/paths.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kFileHeaderBytes = 14;
constexpr char kTaskFile[] = "task.json";

void Append32(std::vector<std::uint8_t>& bytes, std::size_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

std::size_t PackedBytes(const DibHeader& dib) {
    return DibRowsOffset(dib) +
           DibStride(dib.biWidth, dib.biBitCount) * static_cast<std::size_t>(dib.biHeight);
}

// A key to a line keeps a file of hundreds of frames readable and its differences small.
std::string LineForEachKey(const Json& object) {
    std::string text = "{";
    for (const auto& [key, value] : object.items()) {
        text += (text.size() > 1 ? ",\n" : "\n") + Json(key).dump() + ": " +
                value.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    return text + "\n}\n";
}

bool IsNumber(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char letter) { return letter >= '0' && letter <= '9'; });
}

/// What stands between the start and the end of a name; "" for a name of another form.
std::string_view Between(std::string_view name, std::string_view start, std::string_view end) {
    if (name.size() < start.size() + end.size() || !name.starts_with(start) || !name.ends_with(end))
        return {};
    return name.substr(start.size(), name.size() - start.size() - end.size());
}

bool IsFrameFile(const std::string& name) {
    const std::string_view number = Between(name, "frame-", ".bmp");
    return number.size() >= 4 && IsNumber(number);
}

constexpr char kStagingStart[] = ".lumafold-";
bool IsStagingFolder(const std::string& name) { return IsNumber(Between(name, kStagingStart, "")); }

/// Removes a folder and all in it, unless told that it may stay.
class FolderTakenBack {
public:
    explicit FolderTakenBack(fs::path path) : path_(std::move(path)) {}
    FolderTakenBack(const FolderTakenBack&) = delete;
    FolderTakenBack& operator=(const FolderTakenBack&) = delete;
    ~FolderTakenBack() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
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
            fs::rename(to_ / names_.back(), from_ / names_.back(), ignored);
    }

    bool Move(const std::string& name, std::error_code& failure) {
        names_.push_back(name); // first, so that nothing can be moved and forgotten
        fs::rename(from_ / name, to_ / name, failure);
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
    FolderWriter(const std::string& path, std::string& error) : folder_(PathOf(path)), error_(error) {}

    bool Write(const Animation& animation, std::span<const SentCommand> commands, std::uint64_t& bytes) {
        std::error_code failure;
        const bool made = fs::create_directory(folder_, failure);
        if (failure) return Fail(folder_, failure.message());
        FolderTakenBack target(made ? folder_ : fs::path());
        const fs::path staging = NewFolderIn(folder_);
        if (staging.empty()) return Fail(folder_, "cannot be written into");
        FolderTakenBack staged(staging);
        if (!Stage(staging, animation, commands, bytes) || !TargetsAreFree(animation.frames.size()))
            return false;
        if (!MoveIn(staging, animation.frames.size())) return false;
        target.Keep();
        RemoveOldStaging();
        return true;
    }

private:
    bool Fail(const fs::path& file, const std::string& what) {
        error_ = NameOf(file) + ": " + what;
        return false;
    }

    bool Stage(const fs::path& staging, const Animation& animation, std::span<const SentCommand> commands,
               std::uint64_t& bytes) {
        bytes = 0;
        for (std::size_t i = 0; i < animation.frames.size(); ++i) {
            if (Interrupted()) return Fail(folder_, "interrupted");
            const std::vector<std::uint8_t> file = BitmapFile(animation.frames[i].image.Get());
            if (file.empty()) return Fail(folder_ / FrameFileName(i), "no memory for this frame");
            if (!Put(staging / FrameFileName(i), file)) return false;
            bytes += file.size();
        }
        const std::string json = TaskJson(animation, commands);
        bytes += json.size();
        return Put(staging / kTaskFile, {reinterpret_cast<const std::uint8_t*>(json.data()), json.size()});
    }

    bool Put(const fs::path& file, std::span<const std::uint8_t> bytes) {
        std::string why;
        return WriteFileSafely(NameOf(file), bytes, why) || Fail(folder_ / file.filename(), why);
    }

    // A folder in the place of a frame would stop the move half-way.
    bool TargetsAreFree(std::size_t frames) {
        std::error_code ignored;
        for (std::size_t i = 0; i <= frames; ++i) {
            const fs::path place = folder_ / (i < frames ? FrameFileName(i) : kTaskFile);
            if (fs::is_directory(place, ignored)) return Fail(place, "is a folder");
        }
        return true;
    }

    // task.json goes first and comes last, so that whoever finds one finds its frames.
    bool MoveIn(const fs::path& staging, std::size_t frames) {
        std::error_code failure;
        const fs::path aside = staging / "former";
        fs::create_directory(aside, failure);
        if (failure) return Fail(folder_, failure.message());
        FilesMoved former(folder_, aside), moved(staging, folder_);
        const std::vector<std::string> names = FormerFiles(failure);
        if (failure) return Fail(folder_, failure.message());
        for (const std::string& name : names) {
            if (!former.Move(name, failure)) return Fail(folder_ / name, failure.message());
        }
        for (std::size_t i = 0; i <= frames; ++i) {
            const std::string name = i < frames ? FrameFileName(i) : kTaskFile;
            if (!moved.Move(name, failure)) return Fail(folder_ / name, failure.message());
        }
        moved.Keep();
        former.Keep();
        return true;
    }

    std::vector<std::string> FormerFiles(std::error_code& failure) const {
        std::vector<std::string> names;
        std::error_code ignored;
        fs::directory_iterator entry(folder_, failure);
        for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
            std::string name = NameOf(entry->path().filename());
            if (IsFrameFile(name) && !entry->is_directory(ignored)) names.push_back(std::move(name));
        }
        if (fs::exists(fs::symlink_status(folder_ / kTaskFile, ignored))) {
            names.insert(names.begin(), kTaskFile);
        }
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
    std::string& error_;
};

} // namespace

std::vector<std::uint8_t> BitmapFile(DibHandle picture) {
    const LockedDib dib(picture);
    if (!dib) return {};
    const std::size_t rows = DibRowsOffset(*dib);
    const std::size_t packed = PackedBytes(*dib);
    std::vector<std::uint8_t> file{'B', 'M'};
    file.reserve(kFileHeaderBytes + packed);
    Append32(file, kFileHeaderBytes + packed);
    Append32(file, 0);
    Append32(file, kFileHeaderBytes + rows);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(dib.Get());
    file.insert(file.end(), bytes, bytes + packed);
    return file;
}

std::string FrameFileName(std::size_t index) {
    char name[32];
    std::snprintf(name, sizeof(name), "frame-%04zu.bmp", index);
    return name;
}

std::string TaskJson(const Animation& animation, std::span<const SentCommand> commands) {
    Json task;
    task["width"] = animation.width;
    task["height"] = animation.height;
    task["paletteBits"] = animation.paletteBits;
    Json& palette = task["palette"] = Json::array();
    for (const Rgb& colour : animation.palette) {
        palette.push_back(Json::array({colour.red, colour.green, colour.blue}));
    }
    task["frameCount"] = animation.frames.size();
    Json& frames = task["frames"] = Json::array();
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        const AnimationFrame& frame = animation.frames[i];
        frames.push_back({{"file", FrameFileName(i)},
                          {"delay", frame.delay},
                          {"transparentIndex", frame.transparentIndex}});
    }
    task["comment"] = animation.comment;
    Json& sent = task["commands"] = Json::array();
    for (const SentCommand& command : commands) {
        sent.push_back(Json::array({command.command, command.wparam, command.text}));
    }
    return LineForEachKey(task);
}

bool WriteFramesFolder(const std::string& path, const Animation& animation,
                       std::span<const SentCommand> commands, std::uint64_t& bytes, std::string& error) {
    // A slash at the end would make the parent of "x/" be "x".
    std::string folder = path;
    while (folder.size() > 1 && EndsInSeparator(folder))
        folder.pop_back();
    const HoldInterrupts tidy;
    return FolderWriter(folder, error).Write(animation, commands, bytes);
}

std::uint64_t FramesFolderBytes(const Animation& animation, std::span<const SentCommand> commands) {
    std::uint64_t bytes = TaskJson(animation, commands).size();
    for (const AnimationFrame& frame : animation.frames) {
        const LockedDib dib(frame.image.Get());
        if (dib) bytes += kFileHeaderBytes + PackedBytes(*dib);
    }
    return bytes;
}

} // namespace lumafold
