#include "hosts/web/page_host.h"

#include <exception>

namespace lumafold {
namespace {

PageHost* current = nullptr;

/// What a command's last argument points to.
template <typename T>
T* At(std::intptr_t lparam) {
    return reinterpret_cast<T*>(lparam); // NOLINT(performance-no-int-to-ptr): the protocol's own way
}

} // namespace

PageHost::PageHost(std::uint32_t capabilityFlags, TellProgress tell)
    : tell_(std::move(tell)), messagesBefore_(SetMessageHook(&KeepMessage)),
      task_(DelayUnitFor(capabilityFlags)) {
    context_.callback = &Callback;
    context_.capabilityFlags = capabilityFlags;
    current = this;
}

PageHost::~PageHost() {
    current = nullptr;
    SetMessageHook(messagesBefore_);
}

void PageHost::KeepMessage(WindowHandle, const char* text) {
    if (current != nullptr) current->message_ = text;
}

// The engine knows no exceptions, so none may reach it: what went wrong here is a command that failed.
std::int32_t LUMAFOLD_CALL PageHost::Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                              std::intptr_t lparam) {
    if (current == nullptr) return 0;
    try {
        return current->Answer(task, command, wparam, lparam);
    } catch (const std::exception&) {
        return 0;
    }
}

std::int32_t PageHost::Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                              std::intptr_t lparam) {
    switch (static_cast<HostCommand>(command)) {
    case HostCommand::CreateTask:
    case HostCommand::CreateTestTask:
        return !animation_ && task_.Open(At<const TaskRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddFrame:
        return task_.Add(task, At<const ImageRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddComment:
        return task_.Comment(task, At<const char>(lparam)) ? 1 : 0;
    case HostCommand::FinishTask:
        if (!task_.IsOpen(task)) return 0;
        animation_ = task_.Finish(task, wparam == 1);
        return animation_.has_value() == (wparam == 1) ? 1 : 0;
    case HostCommand::Caption:
        caption_ = At<const char>(lparam);
        tell_(caption_.c_str(), 0, 0);
        return 1;
    case HostCommand::Position:
        tell_(caption_.c_str(), static_cast<std::int32_t>(wparam), static_cast<std::int32_t>(lparam));
        return 1;
    case HostCommand::LoadImage:
    case HostCommand::ChooseFiles:
    case HostCommand::ShowHelp:
    case HostCommand::ChooseColour:
    case HostCommand::ClipboardImage:
        return 0; // the page itself lets people choose, and brings every picture along
    }
    return 0;
}

} // namespace lumafold
