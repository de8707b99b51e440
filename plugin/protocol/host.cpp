#include "plugin/protocol/host.h"

#include <cstring>

#include "lumafold_version.h"

namespace lumafold {
namespace {

template <typename T>
std::intptr_t Address(const T* pointer) {
    return reinterpret_cast<std::intptr_t>(pointer);
}

} // namespace

const char kDescriptiveComment[] = "CREATED BY...\r\n"
                                   "\r\n"
                                   "This animation was created by Brackenfield' Ravelin Professional or "
                                   "Ravelin Motion and the Lumafold plugin.\r\n"
                                   "\r\n"
                                   "See\r\n"
                                   "\r\n"
                                   "    " LUMAFOLD_WEB_ADDRESS "\r\n"
                                   "\r\n"
                                   "for more information.";

std::int32_t Host::Send(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                        std::intptr_t lparam) const {
    return callback_(task, static_cast<std::uint32_t>(command), wparam, lparam);
}

bool Host::CreateTask(TaskKind kind, TaskRecord& task) const {
    const HostCommand command =
        kind == TaskKind::Test ? HostCommand::CreateTestTask : HostCommand::CreateTask;
    return Send(nullptr, command, 0, Address(&task)) != 0;
}
bool Host::AddFrame(TaskRecord& task, const ImageRecord& frame) const {
    return Send(&task, HostCommand::AddFrame, 0, Address(&frame)) != 0;
}
void Host::AddComment(TaskRecord& task, const char* text) const {
    Send(&task, HostCommand::AddComment, 0, Address(text));
}
void Host::FinishTask(TaskRecord& task, TaskEnd end) const {
    Send(&task, HostCommand::FinishTask, static_cast<std::uint32_t>(end), 0);
}

void Host::Caption(const char* text) const { Send(nullptr, HostCommand::Caption, 0, Address(text)); }
void Host::Position(std::int32_t position, std::int32_t total) const {
    Send(nullptr, HostCommand::Position, static_cast<std::uint32_t>(position), total);
}

bool Host::ChooseFiles(WindowHandle owner, char* names) const {
    return Send(nullptr, HostCommand::ChooseFiles, owner, Address(names)) != 0;
}
DibHandle Host::LoadPicture(const char* path) const {
    return static_cast<DibHandle>(Send(nullptr, HostCommand::LoadImage, 0, Address(path)));
}
DibHandle Host::ClipboardPicture(WindowHandle owner) const {
    return static_cast<DibHandle>(Send(nullptr, HostCommand::ClipboardImage, owner, 0));
}
bool Host::ShowHelp(const char* reference) const {
    return Send(nullptr, HostCommand::ShowHelp, 0, Address(reference)) != 0;
}
bool Host::ChooseColour(ColourRecord& record) const {
    return Send(nullptr, HostCommand::ChooseColour, 0, Address(&record)) != 0;
}

void FillPluginParams(PluginParams& params) {
    auto* bytes = reinterpret_cast<char*>(&params);
    const std::uint32_t size = params.size;
    std::memset(bytes, 0, size);
    params.size = size;
    params.version = kInterfaceVersion;
    std::memcpy(params.name, kPluginName, sizeof(kPluginName));
    // Written whole whatever the size says: the host must have room for it.
    std::memcpy(bytes + offsetof(PluginParams, notice), LUMAFOLD_NOTICE, sizeof(LUMAFOLD_NOTICE));
}

} // namespace lumafold
