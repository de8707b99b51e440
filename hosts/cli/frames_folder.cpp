#include "hosts/cli/frames_folder.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "codecs/files.h"
#include "hosts/cli/interrupt.h"
#include "hosts/common/staged_folder.h"

namespace lumafold {
namespace {

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

bool IsFrameFile(const std::string& name) { return !NumberBetween(name, "frame-", ".bmp", 4).empty(); }

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
    const std::size_t frames = animation.frames.size();
    FilesForFolder files;
    for (std::size_t i = 0; i < frames; ++i)
        files.names.push_back(FrameFileName(i));
    files.names.emplace_back(kTaskFile);
    files.make = [&](std::size_t index, std::string& why) {
        if (index < frames) {
            why = "no memory for this frame";
            return BitmapFile(animation.frames[index].image.Get());
        }
        const std::string json = TaskJson(animation, commands);
        return std::vector<std::uint8_t>(json.begin(), json.end());
    };
    files.isFormer = IsFrameFile;
    files.whyNotOn = [](std::size_t) { return std::string(Interrupted() ? "interrupted" : ""); };
    const HoldInterrupts tidy;
    return WriteStagedFolder(path, files, bytes, error);
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
