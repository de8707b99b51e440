// The host's side of the protocol: one callback that answers every command of the plug-in. What a command
// asks of the program (dialogs, documents, the clipboard) is done by whoever implements HostServices.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/common/command_host.h"
#include "hosts/common/task_collector.h"
#include "hosts/desktop/progress_window.h"

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

class HostCallbackObject final : public CommandHost {
public:
    HostCallbackObject(HostServices& services, std::uint32_t capabilityFlags)
        : CommandHost(capabilityFlags), services_(services), task_(DelayUnitFor(capabilityFlags)),
          matte_(SavedMatte()) {}
    ~HostCallbackObject() override { progress_.Close(); }

    /// From the first caption to the end of the task, or until the plug-in is back at its dialog.
    bool IsBuilding() const { return progress_.IsShown() || task_.IsOpen(); }
    /// Why the last picture could not be read; "" when it could.
    const std::string& LastReadError() const { return readError_; }

private:
    static PixelValue SavedMatte();
    void HearFault(const char* what) override;
    bool CreateTask(const TaskRecord* task, TaskKind kind) override;
    bool AddFrame(const TaskRecord* task, const ImageRecord* frame) override {
        return task_.Add(task, frame);
    }
    bool AddComment(const TaskRecord* task, const char* text) override { return task_.Comment(task, text); }
    bool FinishTask(const TaskRecord* task, TaskEnd end) override;
    void Caption(const char* text) override;
    void Position(std::int32_t position, std::int32_t total) override;
    bool ChooseFiles(WindowHandle owner, char* names) override;
    OwnedDib LoadPicture(const char* path) override;
    OwnedDib ClipboardPicture(WindowHandle owner) override;
    bool ShowHelp(const char* reference) override;
    bool ChooseColour(ColourRecord* record) override;

    HostServices& services_;
    TaskCollector task_;
    TaskKind kind_ = TaskKind::Build;
    ProgressWindow progress_;
    std::string readError_;
    PixelValue matte_; ///< behind clear parts of pictures: the plug-in's, as it was saved last
};

} // namespace lumafold
