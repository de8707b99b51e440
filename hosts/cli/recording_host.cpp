#include "hosts/cli/recording_host.h"

#include "codecs/frame_changes.h"

namespace lumafold {

void RecordingHost::Fail(BuildFailure failure) {
    progress_.Clear();
    if (!fault_.empty()) return;
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

/// A command that was lost would leave the file without what it told. Nothing but memory can be missing here.
void RecordingHost::HearFault(const char*) {
    if (fault_.empty()) fault_ = kNoMemoryForFile;
}

/// False, with the reason kept, when the frames' taker cannot do it.
template <typename Work>
bool RecordingHost::Passed(Work work) {
    if (!fault_.empty()) return false;
    return FileOrError(
        [&] {
            work();
            return true;
        },
        fault_);
}

bool RecordingHost::CreateTask(const TaskRecord* task, TaskKind) {
    if (complete_ || !task_.Open(task)) return false;
    const auto frames = static_cast<std::size_t>(std::max(task_.ToldFrames(), 0));
    if (Passed([&] { frames_.Begin(task_.Facts(), frames); })) return true;
    task_.Close();
    return false;
}

bool RecordingHost::AddFrame(const TaskRecord* task, const ImageRecord* frame) {
    return task_.Add(task, frame, [&](const FrameView& view) { return Passed([&] { frames_.Add(view); }); });
}

bool RecordingHost::AddComment(const TaskRecord* task, const char* text) {
    if (!task_.IsOpen(task) || text == nullptr) return false;
    comment_ = text;
    return true;
}

bool RecordingHost::FinishTask(const TaskRecord* task, TaskEnd end) {
    if (!task_.IsOpen(task)) return false;
    task_.Close();
    complete_ = end == TaskEnd::Complete && Frames() > 0;
    return complete_ == (end == TaskEnd::Complete);
}

} // namespace lumafold
