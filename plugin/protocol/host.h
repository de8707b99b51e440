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
    bool CreateTask(TaskKind kind, TaskRecord& task) const;
    bool AddFrame(TaskRecord& task, const ImageRecord& frame) const;
    void AddComment(TaskRecord& task, const char* text) const;
    void FinishTask(TaskRecord& task, TaskEnd end) const;

    void Caption(const char* text) const;
    void Position(std::int32_t position, std::int32_t total) const;
    void ResetPosition() const { Position(0, 0); }

    /// Fills `names` with one path, or a folder and file names, ended by an empty string; false when
    /// cancelled.
    bool ChooseFiles(WindowHandle owner, char* names) const;
    /// The pictures are the caller's; 0 when the host has none.
    DibHandle LoadPicture(const char* path) const;
    DibHandle ClipboardPicture(WindowHandle owner) const;
    bool ShowHelp(const char* reference) const;
    bool ChooseColour(ColourRecord& record) const;

private:
    std::int32_t Send(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                      std::intptr_t lparam) const;

    HostCallback callback_;
};

/// Answers PLUGINGetPluginParams: zeroes as much as the host says there is, then writes name, version and
/// notice.
void FillPluginParams(PluginParams& params);

/// The comment of every built animation.
extern const char kDescriptiveComment[];

} // namespace lumafold
