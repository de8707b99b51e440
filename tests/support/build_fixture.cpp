#include "tests/support/build_fixture.h"

namespace lumafold::test {
namespace {

RecordingHost* theHost = nullptr;

const char* Text(std::intptr_t address) {
    return reinterpret_cast<const char*>(address); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

RecordingHost::RecordingHost() {
    theHost = this;
    context.callback = Callback;
    context.capabilityFlags = 3;
    SetMessageHook([](WindowHandle, const char* text) { theHost->messages.emplace_back(text); });
    SetCursorHook([](Cursor cursor) { theHost->waitCursors += cursor == Cursor::Wait ? 1 : -1; });
}

RecordingHost::~RecordingHost() {
    SetMessageHook(nullptr);
    SetCursorHook(nullptr);
    theHost = nullptr;
}

std::int32_t LUMAFOLD_CALL RecordingHost::Callback(TaskRecord* task, std::uint32_t command,
                                                   std::uint32_t wparam, std::intptr_t lparam) {
    return theHost->Answer(task, command, wparam, lparam);
}

std::int32_t RecordingHost::Answer(TaskRecord* sent, std::uint32_t command, std::uint32_t wparam,
                                   std::intptr_t lparam) {
    RecordedCommand record{command, wparam, ""};
    if (command == 3 || (command >= 8 && command <= 10)) record.text = Text(lparam);
    if (command == 13) record.text = std::to_string(lparam);
    // Commands 2 to 4 belong to the task that was made, all others to none.
    if ((sent != nullptr) != (command >= 2 && command <= 4)) record.text += " (task amiss)";
    commands.push_back(record);
    if (command == 1 || command == 5) {
        if (refuseTask) return 0;
        std::memcpy(&task, Text(lparam), sizeof(task));
    }
    if (command == 2) {
        const auto* image = reinterpret_cast<const ImageRecord*>(Text(lparam));
        if (image->index == refuseFrame) return 0;
        if (!keepFrames) return 1;
        frames.push_back(
            {OwnedDib(GlobalDuplicate(image->image)), image->delay, image->index, image->transparentIndex});
    }
    return 1;
}

void TestList::Add(OwnedDib picture, std::int32_t transition, std::int32_t pause, std::int32_t delay) {
    const GlobalHandle block = GlobalCreate(GlobalKind::Movable, sizeof(ImageEntry));
    ImageEntry entry{};
    entry.image = picture.Release();
    entry.transition = transition;
    entry.pause = pause;
    entry.delay = delay;
    blocks_.push_back(block);
    Write(Count() - 1, entry);
}

TestList::~TestList() {
    for (const GlobalHandle block : blocks_) {
        GlobalDestroy(GlobalLocked<ImageEntry>(block)->image);
        GlobalDestroy(block);
    }
}

bool TestList::Read(std::int32_t index, ImageEntry& entry) {
    const GlobalLocked<ImageEntry> stored(blocks_[static_cast<std::size_t>(index)]);
    if (stored) entry = *stored;
    return static_cast<bool>(stored);
}
bool TestList::Write(std::int32_t index, const ImageEntry& entry) {
    const GlobalLocked<ImageEntry> stored(blocks_[static_cast<std::size_t>(index)]);
    if (stored) *stored = entry;
    return static_cast<bool>(stored);
}
bool TestList::AddTemporary(GlobalHandle entry) {
    if (refuseTemporary) return false;
    blocks_.insert(blocks_.begin(), entry);
    return true;
}
void TestList::DeleteFirst() {
    GlobalDestroy(blocks_.front());
    blocks_.erase(blocks_.begin());
}

} // namespace lumafold::test
