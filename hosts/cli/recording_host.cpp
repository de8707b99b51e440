#include "hosts/cli/recording_host.h"

#include <exception>

#include "hosts/codecs/decode.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

RecordingHost* current = nullptr;

/// What a command's last argument points to.
template <typename T>
T* At(std::intptr_t lparam) {
    return reinterpret_cast<T*>(lparam); // NOLINT(performance-no-int-to-ptr): the protocol's own way
}
const char* Text(std::intptr_t lparam) { return At<const char>(lparam); }

DibHandle LoadPicture(const char* path) {
    constexpr std::uint64_t kMostPixels = std::uint64_t{kLargestSide} * kLargestSide;
    return DecodePictureFile(path, pluginSettings.TransitionMattcolour, kMostPixels).picture.Release();
}

} // namespace

RecordingHost::RecordingHost(std::uint32_t capabilityFlags, Progress& progress, std::ostream& errors)
    : progress_(progress), errors_(errors), messagesBefore_(SetMessageHook(&ShowLine)) {
    context_.callback = &Callback;
    context_.capabilityFlags = capabilityFlags;
    current = this;
}

RecordingHost::~RecordingHost() {
    current = nullptr;
    SetMessageHook(messagesBefore_);
}

void RecordingHost::ShowLine(WindowHandle, const char* text) {
    if (current == nullptr) return;
    current->progress_.Clear();
    current->errors_ << "lumafold: " << text << std::endl;
}

// The engine knows no exceptions, so none may reach it: what went wrong here is a command that failed.
std::int32_t LUMAFOLD_CALL RecordingHost::Callback(TaskRecord* task, std::uint32_t command,
                                                   std::uint32_t wparam, std::intptr_t lparam) {
    if (current == nullptr) return 0;
    try {
        return current->Answer(task, command, wparam, lparam);
    } catch (const std::exception&) {
        return 0;
    }
}

std::int32_t RecordingHost::Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                   std::intptr_t lparam) {
    Record(command, wparam, lparam);
    const bool ofTask = state_ == TaskState::Open && task == task_;
    switch (static_cast<HostCommand>(command)) {
    case HostCommand::CreateTask:
    case HostCommand::CreateTestTask:
        return OpenTask(At<TaskRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddFrame:
        return ofTask && AddFrame(*At<const ImageRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddComment:
        if (ofTask) animation_.comment = Text(lparam);
        return ofTask ? 1 : 0;
    case HostCommand::FinishTask:
        if (ofTask) FinishTask(wparam == 1);
        return ofTask ? 1 : 0;
    case HostCommand::Caption:
        progress_.Caption(Text(lparam));
        return 1;
    case HostCommand::Position:
        progress_.Position(static_cast<std::int32_t>(wparam), lparam);
        return 1;
    case HostCommand::LoadImage:
        return static_cast<std::int32_t>(LoadPicture(Text(lparam)));
    case HostCommand::ChooseFiles:
    case HostCommand::ShowHelp:
    case HostCommand::ChooseColour:
    case HostCommand::ClipboardImage:
        return 0; // nobody sits here to choose, and there is no clipboard
    }
    return 0;
}

void RecordingHost::Record(std::uint32_t command, std::uint32_t wparam, std::intptr_t lparam) {
    const auto kind = static_cast<HostCommand>(command);
    if (commands_.empty() && kind != HostCommand::Caption) return;
    std::string text;
    if (kind == HostCommand::Caption || kind == HostCommand::AddComment) text = Text(lparam);
    if (kind == HostCommand::Position) text = std::to_string(lparam);
    commands_.push_back({command, wparam, std::move(text)});
}

bool RecordingHost::OpenTask(TaskRecord* task) {
    if (state_ != TaskState::None || task == nullptr) return false;
    task_ = task;
    state_ = TaskState::Open;
    animation_.width = task->width;
    animation_.height = task->height;
    animation_.paletteBits = task->paletteBits;
    animation_.palette = task->palette;
    if (task->frameCount > 0) animation_.frames.reserve(static_cast<std::size_t>(task->frameCount));
    return true;
}

// The picture stays the plug-in's, which frees it as soon as the task is finished.
bool RecordingHost::AddFrame(const ImageRecord& frame) {
    if (frame.index != static_cast<std::int32_t>(animation_.frames.size())) return false;
    OwnedDib copy(GlobalDuplicate(frame.image));
    if (!copy) return false;
    animation_.frames.push_back({std::move(copy), frame.delay, frame.transparentIndex});
    return true;
}

void RecordingHost::FinishTask(bool complete) {
    task_ = nullptr;
    state_ = complete ? TaskState::Complete : TaskState::None;
    if (!complete) animation_ = {};
}

} // namespace lumafold
