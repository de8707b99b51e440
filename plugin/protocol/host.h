// The host as the plug-in calls it: one function for each command, so that no caller spells a number or a
// cast.
#pragma once

#include "plugin/protocol/host_protocol.h"

namespace lumafold {

enum class TaskKind { Build, Test };
enum class TaskEnd : std::uint32_t { Abandoned = 0, Complete = 1 };

class Host {
public:
    explicit Host(const HostContext& context) : callback_(context.callback) {}

    /// False when the host made no task. The record must stay in place until FinishTask.
    bool CreateTask(TaskKind kind, TaskRecord& task) const {
        const auto command = kind == TaskKind::Test ? HostCommand::CreateTestTask : HostCommand::CreateTask;
        return Send(nullptr, command, 0, &task) != 0;
    }
    bool AddFrame(TaskRecord& task, const ImageRecord& frame) const {
        return Send(&task, HostCommand::AddFrame, 0, &frame) != 0;
    }
    void AddComment(TaskRecord& task, const char* text) const {
        Send(&task, HostCommand::AddComment, 0, text);
    }
    void FinishTask(TaskRecord& task, TaskEnd end) const {
        Send(&task, HostCommand::FinishTask, static_cast<std::uint32_t>(end));
    }

    void Caption(const char* text) const { Send(nullptr, HostCommand::Caption, 0, text); }
    void Position(std::int32_t position, std::int32_t total) const {
        callback_(nullptr, static_cast<std::uint32_t>(HostCommand::Position),
                  static_cast<std::uint32_t>(position), total);
    }
    void ResetPosition() const { Position(0, 0); }

    /// Fills `names` with one path, or a folder and file names, ended by an empty string; false when
    /// cancelled.
    bool ChooseFiles(WindowHandle owner, char* names) const {
        return Send(nullptr, HostCommand::ChooseFiles, owner, names) != 0;
    }
    /// The pictures are the caller's; 0 when the host has none.
    DibHandle LoadPicture(const char* path) const {
        return static_cast<DibHandle>(Send(nullptr, HostCommand::LoadImage, 0, path));
    }
    DibHandle ClipboardPicture(WindowHandle owner) const {
        return static_cast<DibHandle>(Send(nullptr, HostCommand::ClipboardImage, owner));
    }
    bool ShowHelp(const char* reference) const {
        return Send(nullptr, HostCommand::ShowHelp, 0, reference) != 0;
    }
    bool ChooseColour(ColourRecord& record) const {
        return Send(nullptr, HostCommand::ChooseColour, 0, &record) != 0;
    }

private:
    /// The record or text goes as the command's second word.
    std::int32_t Send(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                      const void* record = nullptr) const {
        return callback_(task, static_cast<std::uint32_t>(command), wparam,
                         reinterpret_cast<std::intptr_t>(record));
    }

    HostCallback callback_;
};

/// Answers PLUGINGetPluginParams: zeroes as much as the host says there is, then writes name, version and
/// notice.
void FillPluginParams(PluginParams& params);

/// The comment of every built animation.
extern const char kDescriptiveComment[];

} // namespace lumafold
