#include "tests/support/build_fixture.h"

namespace lumafold::test {

std::uint64_t RecordingHost::Sum() const {
    Checksum sum;
    for (const RecordedCommand& command : commands) {
        sum.Add(&command.command, 2 * sizeof(std::uint32_t));
        sum.Add(command.text.data(), command.text.size());
    }
    sum.Add(&task, sizeof(task));
    for (const RecordedFrame& frame : frames) {
        Palette own;
        DibGetPalette(*frame.image, own);
        const std::int32_t numbers[] = {frame.delay, frame.index, frame.transparentIndex};
        sum.Add(*frame.image);
        sum.Add(own.data(), sizeof(own));
        sum.Add(numbers, sizeof(numbers));
    }
    return sum.Value();
}

void RecordingHost::Forget() {
    commands.clear();
    frames.clear();
    failures.clear();
}

void RecordingHost::Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) {
    std::string text;
    if (command == HostCommand::Caption || command == HostCommand::AddComment)
        text = reinterpret_cast<const char*>(lparam); // NOLINT(performance-no-int-to-ptr)
    if (command == HostCommand::Position) text = std::to_string(lparam);
    commands.push_back({static_cast<std::uint32_t>(command), wparam, std::move(text)});
}

bool RecordingHost::CreateTask(const TaskRecord* made, TaskKind) {
    if (!refuseTask) task = *made;
    return !refuseTask;
}

bool RecordingHost::AddFrame(const TaskRecord*, const ImageRecord* frame) {
    if (frame->index == refuseFrame) return false;
    const ReadDib image(frame->image);
    if (!image) return false;
    if (keepFrames)
        frames.push_back(
            {OwnedDib(GlobalDuplicate(frame->image)), frame->delay, frame->index, frame->transparentIndex});
    return true;
}

} // namespace lumafold::test
