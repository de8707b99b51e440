#include "hosts/cli/frames_folder.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>

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

bool IsFrameFile(const std::string& name) {
    constexpr std::string_view kStart = "frame-", kEnd = ".bmp";
    if (name.size() < kStart.size() + 4 + kEnd.size() || !name.starts_with(kStart) || !name.ends_with(kEnd)) {
        return false;
    }
    return std::all_of(name.begin() + kStart.size(), name.end() - kEnd.size(),
                       [](char letter) { return letter >= '0' && letter <= '9'; });
}

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
        fs::path made = folder / (".lumafold-" + std::to_string(random()));
        if (fs::create_directory(made, failure)) return made;
    }
    return {};
}

/// Writes into a hidden folder inside the target first, and moves everything to its place when all of it
/// stands.
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
            if (!Put(staging / FrameFileName(i), reinterpret_cast<const char*>(file.data()), file.size()))
                return false;
            bytes += file.size();
        }
        const std::string json = TaskJson(animation, commands);
        bytes += json.size();
        return Put(staging / kTaskFile, json.data(), json.size());
    }

    bool Put(const fs::path& file, const char* data, std::size_t size) {
        std::ofstream stream(file, std::ios::binary);
        stream.write(data, static_cast<std::streamsize>(size));
        stream.close();
        return stream ? true : Fail(folder_ / file.filename(), "cannot be written");
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
        fs::remove(folder_ / kTaskFile, failure);
        RemoveStaleFrames(frames);
        for (std::size_t i = 0; i <= frames; ++i) {
            const std::string name = i < frames ? FrameFileName(i) : kTaskFile;
            fs::rename(staging / name, folder_ / name, failure);
            if (failure) return Fail(folder_ / name, failure.message());
        }
        return true;
    }

    void RemoveStaleFrames(std::size_t frames) {
        std::vector<std::string> keep;
        for (std::size_t i = 0; i < frames; ++i)
            keep.push_back(FrameFileName(i));
        std::sort(keep.begin(), keep.end());
        std::vector<fs::path> stale;
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(folder_, ignored)) {
            const std::string name = NameOf(entry.path().filename());
            if (!entry.is_regular_file(ignored) || !IsFrameFile(name)) continue;
            if (!std::binary_search(keep.begin(), keep.end(), name)) stale.push_back(entry.path());
        }
        for (const fs::path& file : stale)
            fs::remove(file, ignored);
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
