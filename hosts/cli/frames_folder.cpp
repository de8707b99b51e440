#include "hosts/cli/frames_folder.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>

#include "codecs/frame_changes.h"
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
    return DibRowsOffset(dib) + static_cast<std::size_t>(DibStride(dib.biWidth, dib.biBitCount)) *
                                    static_cast<std::size_t>(dib.biHeight);
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

/// The packed bitmap behind a 14-byte file header.
std::vector<std::uint8_t> BitmapFile(const DibHeader& dib) {
    const std::size_t rows = DibRowsOffset(dib);
    const std::size_t packed = PackedBytes(dib);
    std::vector<std::uint8_t> file{'B', 'M'};
    file.reserve(kFileHeaderBytes + packed);
    Append32(file, kFileHeaderBytes + packed);
    Append32(file, 0);
    Append32(file, kFileHeaderBytes + rows);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&dib);
    file.insert(file.end(), bytes, bytes + packed);
    return file;
}

Json TaskJson(const AnimationFacts& facts, Json frames, const FinishedTask& finished) {
    Json task;
    task["width"] = facts.width;
    task["height"] = facts.height;
    task["paletteBits"] = facts.paletteBits;
    Json& palette = task["palette"] = Json::array();
    for (const Rgb& colour : facts.palette) {
        palette.push_back(Json::array({colour.red, colour.green, colour.blue}));
    }
    task["frameCount"] = frames.size();
    task["frames"] = std::move(frames);
    task["comment"] = finished.comment;
    Json& sent = task["commands"] = Json::array();
    for (const SentCommand& command : finished.commands) {
        sent.push_back(Json::array({command.command, command.wparam, command.text}));
    }
    return task;
}

} // namespace

struct FramesFolder::State {
    explicit State(const std::string& path) : folder(path), writes(!path.empty()) {}

    void Add(const std::string& name, std::span<const std::uint8_t> file) {
        std::string error;
        if (!folder.Add(name, file, error)) throw AnimationError(error);
    }

    std::optional<HoldInterrupts> tidy; // before the folder, which is taken back while they wait
    StagedFolder folder;
    const bool writes;
    std::uint64_t measured = 0; ///< bytes of bitmaps
    AnimationFacts facts;
    Json frames = Json::array();
};

std::string FrameFileName(std::size_t index) {
    char name[32];
    std::snprintf(name, sizeof(name), "frame-%04zu.bmp", index);
    return name;
}

FramesFolder::FramesFolder(const std::string& path) : state_(std::make_unique<State>(path)) {}
FramesFolder::~FramesFolder() = default;

void FramesFolder::Begin(const AnimationFacts& facts, std::size_t) {
    state_->facts = facts;
    if (state_->writes) state_->tidy.emplace();
}

void FramesFolder::Add(const FrameView& frame) {
    if (state_->writes && Interrupted()) throw AnimationError("interrupted");
    const std::string name = FrameFileName(state_->frames.size());
    state_->frames.push_back(
        {{"file", name}, {"delay", frame.delay}, {"transparentIndex", frame.transparentIndex}});
    state_->measured += kFileHeaderBytes + PackedBytes(frame.picture);
    if (state_->writes) state_->Add(name, BitmapFile(frame.picture));
}

std::uint64_t FramesFolder::Finish(const FinishedTask& task) {
    const std::string json = LineForEachKey(TaskJson(state_->facts, std::move(state_->frames), task));
    if (!state_->writes) return state_->measured + json.size();
    state_->Add(kTaskFile, {reinterpret_cast<const std::uint8_t*>(json.data()), json.size()});
    if (Interrupted()) throw AnimationError("interrupted");
    std::string error;
    if (!state_->folder.Finish(IsFrameFile, error)) throw AnimationError(error);
    state_->tidy.reset();
    return state_->folder.Bytes();
}

} // namespace lumafold
