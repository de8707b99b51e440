// A run of the plug-in: its dialog from opening to closing, and what it asks of the program meanwhile.
#pragma once

#include <deque>
#include <memory>

#include "hosts/desktop/attendant.h"
#include "hosts/desktop/file_actions.h"
#include "hosts/desktop/host_callback.h"
#include "hosts/desktop/plugin_library.h"

namespace lumafold {

/// By this timer of the main window, what waits for the plug-in's dialog is handed over.
inline constexpr UINT_PTR kFeedTimer = 3;
inline constexpr UINT kFeedMilliseconds = 30;

class PluginSession : public HostServices {
public:
    /// All outlive it.
    PluginSession(const PluginLibrary& plugin, FileActions& files, Attendant& attendant)
        : plugin_(plugin), files_(files), attendant_(attendant) {}

    /// Returns when the plug-in's dialog is closed. `window` takes no input meanwhile.
    void Run(HWND window, std::uint32_t capabilities);
    bool IsRunning() const { return host_ != nullptr; }
    bool IsBuilding() const { return host_ && host_->IsBuilding(); }

    /// Pictures for its list, full paths: "Add" is pressed for them as soon as its dialog is there. What is
    /// wrong with one is told above `owner`.
    void Queue(HWND owner, const std::vector<std::string>& pictures);
    bool HasQueued() const { return !queued_.empty(); }
    /// Called now and then while it runs and something is queued.
    void Feed();

    /// The manual beside the program, or what a plug-in names so.
    bool ShowManual(const std::string& reference) override;
    void TakeAnimation(Animation animation, TaskKind kind) override;

private:
    HWND DialogInUse() override { return GetLastActivePopup(window_); }
    std::vector<std::string> ChoosePictures(HWND owner) override;
    bool ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) override {
        return attendant_.ChooseColour(owner, colour, custom);
    }

    const PluginLibrary& plugin_;
    FileActions& files_;
    Attendant& attendant_;
    HWND window_ = nullptr;
    std::unique_ptr<HostCallbackObject> host_;
    std::deque<std::vector<std::string>> queued_; ///< each what one choice of files can hold
    bool feeding_ = false;
};

} // namespace lumafold
