#include "hosts/cli/recording_host.h"

#include <exception>

#include "codecs/decode.h"
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
    : progress_(progress), errors_(errors), messagesBefore_(SetMessageHook(&ShowLine)),
      task_(DelayUnitFor(capabilityFlags)) {
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
    switch (static_cast<HostCommand>(command)) {
    case HostCommand::CreateTask:
    case HostCommand::CreateTestTask:
        return !complete_ && task_.Open(At<const TaskRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddFrame:
        return task_.Add(task, At<const ImageRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddComment:
        return task_.Comment(task, Text(lparam)) ? 1 : 0;
    case HostCommand::FinishTask:
        return FinishTask(task, wparam == 1) ? 1 : 0;
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

bool RecordingHost::FinishTask(const TaskRecord* task, bool complete) {
    if (!task_.IsOpen(task)) return false;
    std::optional<Animation> animation = task_.Finish(task, complete);
    complete_ = animation.has_value();
    if (complete_) animation_ = std::move(*animation);
    return complete_ == complete;
}

} // namespace lumafold
