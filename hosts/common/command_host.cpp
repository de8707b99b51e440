#include "hosts/common/command_host.h"

#include <atomic>
#include <exception>

namespace lumafold {
namespace {

thread_local CommandHost* current = nullptr;
/// For a thread that made none.
std::atomic<CommandHost*> latest = nullptr;

/// What a command's last argument points to.
template <typename T>
T* At(std::intptr_t lparam) {
    return reinterpret_cast<T*>(lparam); // NOLINT(performance-no-int-to-ptr): the protocol's own way
}

} // namespace

CommandHost::CommandHost(std::uint32_t capabilityFlags) : before_(std::exchange(current, this)) {
    latest = this;
    context_.callback = &Callback;
    context_.capabilityFlags = capabilityFlags;
}

CommandHost::~CommandHost() {
    current = before_;
    CommandHost* self = this;
    latest.compare_exchange_strong(self, before_);
}

std::int32_t LUMAFOLD_CALL CommandHost::Callback(TaskRecord* task, std::uint32_t command,
                                                 std::uint32_t wparam, std::intptr_t lparam) {
    CommandHost* host = current != nullptr ? current : latest.load();
    if (host == nullptr) return 0;
    try {
        const auto known = static_cast<HostCommand>(command);
        host->Hear(known, wparam, lparam);
        return host->Answer(task, known, wparam, lparam);
    } catch (const std::exception& fault) {
        host->HearFault(fault.what());
    } catch (...) {
        host->HearFault("unexpected fault");
    }
    return 0;
}

std::int32_t CommandHost::Answer(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                                 std::intptr_t lparam) {
    switch (command) {
    case HostCommand::CreateTask:
        return CreateTask(At<const TaskRecord>(lparam), TaskKind::Build) ? 1 : 0;
    case HostCommand::CreateTestTask:
        return CreateTask(At<const TaskRecord>(lparam), TaskKind::Test) ? 1 : 0;
    case HostCommand::AddFrame:
        return AddFrame(task, At<const ImageRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddComment:
        return AddComment(task, At<const char>(lparam)) ? 1 : 0;
    case HostCommand::FinishTask:
        return FinishTask(task, wparam == 1 ? TaskEnd::Complete : TaskEnd::Abandoned) ? 1 : 0;
    case HostCommand::Caption:
        Caption(At<const char>(lparam));
        return 1;
    case HostCommand::Position:
        Position(static_cast<std::int32_t>(wparam), static_cast<std::int32_t>(lparam));
        return 1;
    case HostCommand::ChooseFiles:
        return ChooseFiles(wparam, At<char>(lparam)) ? 1 : 0;
    case HostCommand::LoadImage:
        return static_cast<std::int32_t>(LoadPicture(At<const char>(lparam)).Release());
    case HostCommand::ShowHelp:
        return ShowHelp(At<const char>(lparam)) ? 1 : 0;
    case HostCommand::ChooseColour:
        return ChooseColour(At<ColourRecord>(lparam)) ? 1 : 0;
    case HostCommand::ClipboardImage:
        return static_cast<std::int32_t>(ClipboardPicture(wparam).Release());
    }
    return 0;
}

} // namespace lumafold
