// The host's side of the protocol: one callback that answers every command of the plug-in. What a command
// asks of the program (dialogs, documents, the clipboard) is done by whoever implements HostServices.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/common/task_collector.h"
#include "hosts/desktop/progress_window.h"
#include "plugin/protocol/host.h"

namespace lumafold {

class HostServices {
public:
    virtual void TakeAnimation(Animation animation, TaskKind kind) = 0;
    /// The window that the plug-in works for, which takes no input while it does.
    virtual HWND DialogInUse() = 0;
    /// Full paths, or none when the person cancelled.
    virtual std::vector<std::string> ChoosePictures(HWND owner) = 0;
    virtual bool ShowManual(const std::string& reference) = 0;
    /// `colour` is the one before, and the one chosen when true is returned. `custom` are sixteen, or null.
    virtual bool ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) = 0;

protected:
    ~HostServices() = default;
};

/// The callback has no place for an object, so there is one of these at a time.
class HostCallbackObject {
public:
    HostCallbackObject(HostServices& services, std::uint32_t capabilityFlags);
    HostCallbackObject(const HostCallbackObject&) = delete;
    HostCallbackObject& operator=(const HostCallbackObject&) = delete;
    ~HostCallbackObject();

    const HostContext& Context() const { return context_; }
    /// From the first caption to the end of the task, or until the plug-in is back at its dialog.
    bool IsBuilding() const { return progress_.IsShown() || task_.IsOpen(); }
    /// Why the last picture could not be read; "" when it could.
    const std::string& LastReadError() const { return readError_; }

private:
    static std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                               std::intptr_t lparam);
    std::int32_t Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam, std::intptr_t lparam);
    bool Open(const TaskRecord* task, TaskKind kind);
    bool Finish(const TaskRecord* task, bool complete);
    bool ChooseFiles(HWND owner, char* names);
    DibHandle LoadPicture(const char* path);
    bool ChooseColour(ColourRecord* record);

    HostServices& services_;
    HostContext context_{};
    TaskCollector task_;
    TaskKind kind_ = TaskKind::Build;
    ProgressWindow progress_;
    std::string readError_;
};

/// The buffer of the choose-files command for these paths, ended as the plug-in expects; empty when they are
/// not in one folder, too many, or too long.
std::vector<char> ChosenNamesBuffer(const std::vector<std::string>& paths);

} // namespace lumafold
