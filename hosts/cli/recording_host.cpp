#include "hosts/cli/recording_host.h"

namespace lumafold {

void RecordingHost::Fail(BuildFailure failure) {
    progress_.Clear();
    errors_ << "lumafold: " << TextOf(failure) << std::endl;
}

void RecordingHost::Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) {
    if (commands_.empty() && command != HostCommand::Caption) return;
    std::string text;
    if (command == HostCommand::Caption || command == HostCommand::AddComment) {
        text = reinterpret_cast<const char*>(lparam); // NOLINT(performance-no-int-to-ptr): the protocol's way
    }
    if (command == HostCommand::Position) text = std::to_string(lparam);
    commands_.push_back({static_cast<std::uint32_t>(command), wparam, std::move(text)});
}

bool RecordingHost::CreateTask(const TaskRecord* task, TaskKind) { return !complete_ && task_.Open(task); }
bool RecordingHost::AddFrame(const TaskRecord* task, const ImageRecord* frame) {
    return task_.Add(task, frame);
}
bool RecordingHost::AddComment(const TaskRecord* task, const char* text) { return task_.Comment(task, text); }

bool RecordingHost::FinishTask(const TaskRecord* task, TaskEnd end) {
    if (!task_.IsOpen(task)) return false;
    std::optional<Animation> animation = task_.Finish(task, end == TaskEnd::Complete);
    complete_ = animation.has_value();
    if (complete_) animation_ = std::move(*animation);
    return complete_ == (end == TaskEnd::Complete);
}

} // namespace lumafold
